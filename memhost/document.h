// The in-memory drawing: objects, tables, blocks, entities, selection sets.
//
// The document owns every object. Erasing marks an object erased; its memory
// stays, so references handed out never dangle, and further use raises
// HostError(kErased). Entities on a locked layer refuse every change.
//
// Object IDs: by default an object's ID is derived from its handle
// (2130000000 + handle while that fits, a mixed value otherwise), so the same
// file loaded twice gives the same IDs. With IdPolicy::kFresh every load
// hands out new IDs, as the real host does from one session to the next.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/host.h"
#include "memhost/block_reference.h"
#include "memhost/curves.h"
#include "memhost/flat_map.h"
#include "memhost/hatch.h"
#include "memhost/object.h"
#include "memhost/session.h"
#include "memhost/tables.h"
#include "memhost/texts.h"

namespace kestrana::memhost {

class MemSelectionSet final : public host::SelectionSet {
 public:
  MemSelectionSet(MemDocument& doc, std::string name)
      : doc_(&doc), name_(std::move(name)) {}
  std::string Name() const override;
  int Count() const override;
  host::Entity& Item(int index) const override;
  std::vector<host::Entity*> Entities() const override;
  void AddItems(const std::vector<host::Entity*>& entities) override;
  void RemoveItems(const std::vector<host::Entity*>& entities) override;
  void Clear() override;
  void Select(host::SelectMode mode, const Point3& corner1,
              const Point3& corner2, const host::Filter& filter) override;
  void SelectOnScreen(const host::Filter& filter) override;
  void Erase() override;
  void Delete() override;

  bool IsDeleted() const { return deleted_; }

 private:
  void CheckLive() const;
  void Add(MemEntity* e);
  MemDocument* doc_;
  std::string name_;
  bool deleted_ = false;
  std::vector<MemEntity*> items_;
  std::unordered_map<const MemEntity*, size_t> positions_;
};

class MemSelectionSets final : public host::SelectionSets {
 public:
  explicit MemSelectionSets(MemDocument& doc) : doc_(doc) {}
  int Count() const override;
  host::SelectionSet& Item(int index) const override;
  host::SelectionSet& Add(const std::string& name) override;

 private:
  friend class MemSelectionSet;
  MemDocument& doc_;
  std::vector<std::unique_ptr<MemSelectionSet>> sets_;
};

// Prompts and picks, answered by the application's input script.
class MemUtility final : public host::Utility {
 public:
  explicit MemUtility(MemDocument& doc) : doc_(doc) {}
  void Prompt(const std::string& text) override;
  Point3 GetPoint(const std::optional<Point3>& base,
                  const std::string& prompt) override;
  host::EntityPick GetEntity(const std::string& prompt) override;

 private:
  MemDocument& doc_;
};

// Entities in creation order, for one index key. New entities are the
// youngest, so adding is mostly appending; erased ones are skipped and
// dropped once they make up half of the list.
class SequenceIndex {
 public:
  // Adds `e` unless it is there.
  void Add(MemEntity* e);
  void Remove(MemEntity* e);
  // Live and erased entries (an upper bound of the live ones).
  size_t Size() const { return items_.size(); }
  // The live entities in order.
  template <class F>
  void ForEach(F&& f) const {
    size_t erased = 0;
    for (MemEntity* e : items_) {
      if (e->IsErased())
        ++erased;
      else
        f(e);
    }
    if (erased > 0 && erased * 2 >= items_.size()) Compact();
  }

 private:
  void Compact() const;
  mutable std::vector<MemEntity*> items_;
};

class MemDocument final : public host::Document {
 public:
  explicit MemDocument(std::shared_ptr<MemApplication> app = nullptr,
                       Options options = {});
  ~MemDocument() override;
  MemDocument(const MemDocument&) = delete;
  MemDocument& operator=(const MemDocument&) = delete;

  MemApplication& App() { return *app_; }
  Session& GetSession() { return app_->GetSession(); }
  const Options& GetOptions() const { return options_; }

  // host::Document
  host::Application& GetApplication() override { return *app_; }
  std::string Name() const override { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  host::Block& ModelSpace() override;
  host::Blocks& GetBlocks() override { return blocks_; }
  host::Layers& GetLayers() override { return layers_; }
  host::TextStyles& GetTextStyles() override { return styles_; }
  host::SelectionSets& GetSelectionSets() override { return sets_view_; }
  host::Utility& GetUtility() override { return utility_; }
  host::Object& ObjectIdToObject(ObjectId id) override;
  host::Object& HandleToObject(const std::string& handle) override;
  host::Layer& ActiveLayer() override;
  void SetActiveLayer(host::Layer& layer) override;
  host::TextStyle& ActiveTextStyle() override;
  void SetActiveTextStyle(host::TextStyle& style) override;
  host::SysVar GetVariable(const std::string& name) const override;
  void SetVariable(const std::string& name, const host::SysVar& value) override;
  void SendCommand(const std::string& text) override;
  const std::map<std::string, host::SysVar>& Variables() const {
    return variables_;
  }

  // Typed access for the file layer, the renderer and tests.
  MemBlock& ModelSpaceBlock() { return *blocks_.List().front(); }
  MemBlock& PaperSpaceBlock() { return *blocks_.List()[1]; }
  const std::vector<MemBlock*>& BlockList() const { return blocks_.List(); }
  const std::vector<MemLayer*>& LayerList() const { return layers_.List(); }
  const std::vector<MemTextStyle*>& TextStyleList() const {
    return styles_.List();
  }
  MemBlock* FindBlock(const std::string& name) const;
  MemLayer* FindLayer(const std::string& name) const;
  MemTextStyle* FindTextStyle(const std::string& name) const;
  MemLayer& AddLayer(const std::string& name, uint64_t handle = 0);
  MemTextStyle& AddTextStyle(const std::string& name, uint64_t handle = 0);
  MemBlock& AddBlock(const std::string& name, const Point3& origin,
                     uint64_t handle = 0);
  MemObject* FindById(ObjectId id) const;
  MemObject* FindByHandle(uint64_t handle) const;

  // Applications named in extended data, in registration order.
  const std::vector<std::string>& RegisteredApps() const { return apps_; }
  void RegisterApp(const std::string& app);

  // Handles: the next unused one is handed to each new object; the file
  // layer re-handles objects it reads and writes the seed back.
  uint64_t NextHandle();
  uint64_t HandleSeed() const;
  void Rehandle(MemObject& object, uint64_t handle);
  // Marks a handle as taken by something the file layer keeps outside the
  // object model (tables, block begin and end markers, OBJECTS, ...), so
  // that new objects never receive it. kDuplicateKey when it is in use.
  void ReserveHandle(uint64_t handle);
  // Sets where new handles start (the file layer, after a load that moved
  // objects about); handles in use are still skipped.
  void SetHandleSeed(uint64_t seed) { next_handle_ = seed == 0 ? 1 : seed; }

  // What the file layer keeps of the whole drawing to write it back.
  FileState& File() { return file_; }

  // While loading, locked layers accept changes.
  class LoadScope {
   public:
    explicit LoadScope(MemDocument& doc) : doc_(doc) { ++doc_.loading_; }
    ~LoadScope() { --doc_.loading_; }
    LoadScope(const LoadScope&) = delete;
    LoadScope& operator=(const LoadScope&) = delete;

   private:
    MemDocument& doc_;
  };
  bool Loading() const { return loading_ > 0; }

  // Selection over the layouts' entities in drawing order.
  std::vector<MemEntity*> SelectAll(const host::Filter& filter) const;
  std::vector<MemEntity*> SelectWindow(const Point3& c1, const Point3& c2,
                                       bool crossing,
                                       const host::Filter& filter) const;

  // Internal bookkeeping called by objects.
  void OnXDataChanged(MemEntity& e, const std::string& app, bool present);
  void OnErased(MemEntity& e);
  void OnLayerChanged(MemEntity& e, const std::string& from,
                      const std::string& to);
  MemObject& RegisterObject(std::unique_ptr<MemObject> object, uint64_t handle);
  void IndexEntity(MemEntity& e);

 private:
  friend class MemSelectionSet;
  friend class MemSelectionSets;
  friend class MemBlock;
  friend class MemLayer;
  ObjectId IdFor(uint64_t handle);

  std::shared_ptr<MemApplication> app_;
  Options options_;
  std::string name_ = "Drawing";
  std::vector<std::unique_ptr<MemObject>> objects_;
  FlatMap<ObjectId, MemObject*> by_id_;
  // A handle may be taken by nothing of the model (a null entry).
  FlatMap<uint64_t, MemObject*> by_handle_;
  MemBlocks blocks_{*this};
  MemLayers layers_{*this};
  MemTextStyles styles_{*this};
  MemSelectionSets sets_view_{*this};
  MemUtility utility_{*this};
  std::vector<std::string> apps_;
  std::map<std::string, host::SysVar> variables_;
  MemLayer* active_layer_ = nullptr;
  MemTextStyle* active_style_ = nullptr;
  uint64_t next_handle_ = 1;
  uint64_t next_seq_ = 1;
  uint64_t fresh_base_ = 0;
  uint64_t fresh_count_ = 0;
  int loading_ = 0;
  FileState file_;
  // Indexes of selectable entities (in layouts): all, by upper-case
  // application name, entity type and block name; ordered by sequence.
  SequenceIndex selectable_;
  std::unordered_map<std::string, SequenceIndex> by_app_;
  std::unordered_map<std::string, SequenceIndex> by_type_;
  std::unordered_map<std::string, SequenceIndex> by_block_;
};

}  // namespace kestrana::memhost
