// The in-memory host's application: version, the scripted answers to prompts
// and message boxes, the record of everything shown, the civil extension with
// its surfaces, and form controls.
#pragma once

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/host.h"

namespace kestrana::memhost {

using host::ObjectId;
using host::Point3;

// One answer the "user" gives, consumed in order by prompts.
struct Input {
  enum class Kind { kPoint, kEntity, kSelection, kAnswer, kCancel };
  // How a scripted on-screen selection picks before the caller's filter.
  enum class Pick { kObjects, kWindow, kCrossing, kAll };

  Kind kind = Kind::kCancel;
  Point3 point;                   // kPoint; kEntity: the pick point
  ObjectId entity = 0;            // kEntity
  Pick pick = Pick::kObjects;     // kSelection
  std::vector<ObjectId> objects;  // kSelection with kObjects
  Point3 corner1, corner2;        // kSelection with kWindow / kCrossing
  host::Filter extra_filter;      // kSelection: narrows what the user picks
  int answer = 0;                 // kAnswer

  static Input PointAt(double x, double y, double z = 0);
  static Input EntityAt(ObjectId id, const Point3& pick_point = {});
  static Input Objects(std::vector<ObjectId> ids);
  static Input Window(const Point3& c1, const Point3& c2);
  static Input Crossing(const Point3& c1, const Point3& c2);
  static Input All(host::Filter extra = {});
  static Input Answer(int answer);
  static Input Cancel();
};

// Everything the system showed or sent, in order.
struct LogEntry {
  enum class Kind {
    kPrompt,
    kMessage,
    kCommand,
    kPointRequest,
    kEntityRequest,
    kSelectionRequest,
  };
  Kind kind = Kind::kPrompt;
  std::string text;
  int buttons = 0;
  int icon = 0;
  std::string title;
  int answer = 0;
};

class Session {
 public:
  void Push(Input input) { script_.push_back(std::move(input)); }
  bool Empty() const { return script_.empty(); }
  size_t Remaining() const { return script_.size(); }
  // The next input, which must be of `kind` or a cancel; raises kNoInput
  // naming `what` otherwise.
  Input Next(Input::Kind kind, const std::string& what);
  // The next input when it is a message-box answer.
  std::optional<int> NextAnswer();

  void Record(LogEntry entry) { log_.push_back(std::move(entry)); }
  const std::vector<LogEntry>& Log() const { return log_; }
  std::vector<std::string> Messages() const;
  std::vector<std::string> Prompts() const;
  void ClearLog() { log_.clear(); }

 private:
  std::deque<Input> script_;
  std::vector<LogEntry> log_;
};

// A terrain surface made of triangles; elevations interpolate linearly on the
// triangle that holds the point (edges and corners included).
class MemSurface : public host::Surface {
 public:
  MemSurface(std::string name, std::vector<Point3> points,
             std::vector<std::array<int, 3>> triangles);
  ~MemSurface() override;
  std::string Name() const override { return name_; }
  double FindElevationAtXY(double x, double y) const override;
  size_t TriangleCount() const { return triangles_.size(); }

 private:
  struct Grid;
  std::string name_;
  std::vector<Point3> points_;
  std::vector<std::array<int, 3>> triangles_;
  std::unique_ptr<Grid> grid_;
};

class MemSurfaces : public host::Surfaces {
 public:
  int Count() const override { return static_cast<int>(surfaces_.size()); }
  host::Surface& Item(int index) const override;
  host::Surface& Item(const std::string& name) const override;
  MemSurface& Add(std::unique_ptr<MemSurface> surface);
  // Forgets every surface (a command that brings its own surfaces).
  void Clear() { surfaces_.clear(); }

 private:
  std::vector<std::unique_ptr<MemSurface>> surfaces_;
};

class MemCivilDocument : public host::CivilDocument {
 public:
  host::Surfaces& GetSurfaces() override { return surfaces_; }
  MemSurfaces& Surfaces() { return surfaces_; }

 private:
  MemSurfaces surfaces_;
};

class MemCivilApplication : public host::CivilApplication {
 public:
  host::CivilDocument& ActiveDocument() override { return document_; }
  MemCivilDocument& Document() { return document_; }

 private:
  MemCivilDocument document_;
};

class MemApplication : public host::Application {
 public:
  static constexpr const char* kDefaultVersion = "17.1s (LMS Tech)";

  std::string Version() const override { return version_; }
  void SetVersion(std::string version) { version_ = std::move(version); }
  // The identifier the civil extension registers under for this version,
  // empty when the version has none.
  std::string CivilProgId() const;
  // Whether the civil extension is installed at all.
  void SetCivilInstalled(bool installed) { civil_installed_ = installed; }

  host::CivilApplication& GetInterfaceObject(
      const std::string& prog_id) override;
  int MessageBox(const std::string& text, int buttons, int icon,
                 const std::string& title) override;
  // Answer given to a message box the script does not answer.
  void SetDefaultAnswer(int buttons, int answer) {
    defaults_[buttons] = answer;
  }

  MemCivilApplication& Civil() { return civil_; }
  Session& GetSession() { return session_; }

 private:
  std::string version_ = kDefaultVersion;
  bool civil_installed_ = true;
  MemCivilApplication civil_;
  Session session_;
  std::map<int, int> defaults_;
};

class MemComboBox : public host::ComboBox {
 public:
  int ListCount() const override { return static_cast<int>(items_.size()); }
  std::string List(int index) const override;
  void AddItem(const std::string& item) override { items_.push_back(item); }
  void Clear() override;
  int ListIndex() const override { return index_; }
  void SetListIndex(int index) override;
  std::string Text() const override { return text_; }
  void SetText(const std::string& text) override;

 private:
  std::vector<std::string> items_;
  int index_ = -1;
  std::string text_;
};

class MemCheckBox : public host::CheckBox {
 public:
  int Value() const override { return value_; }
  void SetValue(int value) override;

 private:
  int value_ = 0;
};

class MemCommandButton : public host::CommandButton {
 public:
  bool Enabled() const override { return enabled_; }
  void SetEnabled(bool enabled) override { enabled_ = enabled; }

 private:
  bool enabled_ = true;
};

class MemTextBox : public host::TextBox {
 public:
  std::string Text() const override { return text_; }
  void SetText(const std::string& text) override { text_ = text; }

 private:
  std::string text_;
};

// A dialog whose controls are added by name before use.
class MemForm : public host::Form {
 public:
  MemComboBox& AddComboBox(const std::string& name);
  MemCheckBox& AddCheckBox(const std::string& name);
  MemCommandButton& AddCommandButton(const std::string& name);
  MemTextBox& AddTextBox(const std::string& name);

  host::ComboBox& GetComboBox(const std::string& name) override;
  host::CheckBox& GetCheckBox(const std::string& name) override;
  host::CommandButton& GetCommandButton(const std::string& name) override;
  host::TextBox& GetTextBox(const std::string& name) override;

 private:
  std::map<std::string, std::unique_ptr<MemComboBox>> combos_;
  std::map<std::string, std::unique_ptr<MemCheckBox>> checks_;
  std::map<std::string, std::unique_ptr<MemCommandButton>> buttons_;
  std::map<std::string, std::unique_ptr<MemTextBox>> texts_;
};

class MemDataGrid : public host::DataGrid {
 public:
  explicit MemDataGrid(std::vector<std::vector<std::string>> rows, int columns)
      : rows_(std::move(rows)), columns_(columns) {}
  int ColumnCount() const override { return columns_; }
  int RowCount() const override { return static_cast<int>(rows_.size()); }
  std::string Value(int row, int column) const override;

 private:
  std::vector<std::vector<std::string>> rows_;
  int columns_;
};

}  // namespace kestrana::memhost
