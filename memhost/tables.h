// Block definitions, layers and text styles, and their tables.
#pragma once

#include "memhost/object.h"

namespace kestrana::memhost {

class MemBlock final : public ObjectImpl<host::Block> {
 public:
  std::string ObjectName() const override { return "AcDbBlockTableRecord"; }
  std::string Name() const override;
  Point3 Origin() const override;
  void SetOrigin(const Point3& p) override;
  bool IsLayout() const override;
  bool IsXRef() const override;
  int Count() const override;
  host::Entity& Item(int index) const override;
  std::vector<host::Entity*> Entities() const override;
  void Delete() override;

  host::LwPolyline& AddLightWeightPolyline(
      const std::vector<double>& xy) override;
  host::Line& AddLine(const Point3& start, const Point3& end) override;
  host::Point& AddPoint(const Point3& p) override;
  host::Circle& AddCircle(const Point3& center, double radius) override;
  host::Arc& AddArc(const Point3& center, double radius, double start_angle,
                    double end_angle) override;
  host::Ellipse& AddEllipse(const Point3& center, const Point3& major_axis,
                            double radius_ratio) override;
  host::Text& AddText(const std::string& text, const Point3& insertion_point,
                      double height) override;
  host::AttributeDefinition& AddAttribute(double height, int mode,
                                          const std::string& prompt,
                                          const Point3& insertion_point,
                                          const std::string& tag,
                                          const std::string& value) override;
  host::Hatch& AddHatch(int pattern_type, const std::string& pattern_name,
                        bool associativity) override;
  host::BlockReference& InsertBlock(const Point3& insertion_point,
                                    const std::string& name, double x_scale,
                                    double y_scale, double z_scale,
                                    double rotation) override;

  // Adds an entity of any kind (the file reader's way in) with `handle`
  // (0: a new one); it goes on the current layer unless its layer is set.
  template <class T>
  T& AddNew(std::unique_ptr<T> entity, uint64_t handle = 0) {
    return static_cast<T&>(Adopt(std::move(entity), handle));
  }
  // Live entities, in drawing order, as the memhost type.
  std::vector<MemEntity*> MemEntities() const;

  std::string name_;
  Point3 origin_;
  bool is_layout_ = false;
  bool is_xref_ = false;

 private:
  friend class MemDocument;
  template <class B>
  friend class EntityImpl;
  MemEntity& Adopt(std::unique_ptr<MemEntity> entity, uint64_t handle);
  void Compact() const;
  mutable std::vector<MemEntity*> entities_;
  mutable size_t erased_count_ = 0;
};

class MemLayer final : public ObjectImpl<host::Layer> {
 public:
  std::string ObjectName() const override { return "AcDbLayerTableRecord"; }
  std::string Name() const override;
  bool Freeze() const override;
  void SetFreeze(bool frozen) override;
  bool Lock() const override;
  void SetLock(bool locked) override;
  bool LayerOn() const override;
  void SetLayerOn(bool on) override;
  int TrueColor() const override;
  void SetTrueColor(int color_index) override;
  void Delete() override;

  std::string name_;
  bool frozen_ = false;
  bool locked_ = false;
  bool on_ = true;
  int color_ = host::color::kWhite;
  // Live entities on the layer (the layer cannot be deleted while any).
  int use_count_ = 0;
};

class MemTextStyle final : public ObjectImpl<host::TextStyle> {
 public:
  std::string ObjectName() const override { return "AcDbTextStyleTableRecord"; }
  std::string Name() const override;
  double Height() const override;
  void SetHeight(double height) override;
  double Width() const override;
  void SetWidth(double factor) override;
  std::string FontFile() const override;
  void SetFontFile(const std::string& file) override;
  double ObliqueAngle() const override;
  void SetObliqueAngle(double angle) override;

  std::string name_;
  double height_ = 0;
  double width_ = 1;
  std::string font_file_ = "txt";
  double oblique_ = 0;
};

// A table of named records (blocks, layers, text styles): unique names
// compared without case, creation order kept. The three host tables differ
// only in what they hold and in how a new record starts.
template <class HostTable, class HostItem, class Record>
class SymbolTable : public HostTable {
 public:
  SymbolTable(MemDocument& doc, const char* what) : doc_(doc), what_(what) {}
  int Count() const override { return static_cast<int>(records_.size()); }
  HostItem& Item(int index) const override;
  HostItem& Item(const std::string& name) const override;
  HostItem* Find(const std::string& name) const override {
    return FindItem(name);
  }

  Record* FindItem(const std::string& name) const;
  const std::vector<Record*>& List() const { return records_; }
  // Registers a new record with `handle` (0: a new one) without checks.
  Record& Insert(std::unique_ptr<Record> record, uint64_t handle);
  void Remove(Record* record);

 protected:
  // The record named `name`, or a checked new one from `make()`.
  template <class Make>
  Record& FindOrAdd(const std::string& name, Make&& make) {
    if (Record* found = FindItem(name)) return *found;
    CheckName(name);
    return make();
  }
  void CheckName(const std::string& name) const;

  MemDocument& doc_;
  const char* what_;

 private:
  std::vector<Record*> records_;
};

class MemBlocks final
    : public SymbolTable<host::Blocks, host::Block, MemBlock> {
 public:
  explicit MemBlocks(MemDocument& doc) : SymbolTable(doc, "block") {}
  host::Block& Add(const Point3& origin, const std::string& name) override;
};

class MemLayers final
    : public SymbolTable<host::Layers, host::Layer, MemLayer> {
 public:
  explicit MemLayers(MemDocument& doc) : SymbolTable(doc, "layer") {}
  host::Layer& Add(const std::string& name) override;
};

class MemTextStyles final
    : public SymbolTable<host::TextStyles, host::TextStyle, MemTextStyle> {
 public:
  explicit MemTextStyles(MemDocument& doc) : SymbolTable(doc, "text style") {}
  host::TextStyle& Add(const std::string& name) override;
};

}  // namespace kestrana::memhost
