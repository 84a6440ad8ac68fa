#include "memhost/document.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <sstream>

#include "memhost/filter.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;

namespace {

std::string Upper(std::string s) {
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return s;
}

bool SameName(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x == y) continue;
    if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 32);
    if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 32);
    if (x != y) return false;
  }
  return true;
}

std::string HexHandle(uint64_t h) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "%llX", static_cast<unsigned long long>(h));
  return buf;
}

// Names of layers, styles and blocks follow the host's symbol rules.
void CheckSymbolName(const std::string& name, const char* what, bool loading) {
  if (name.empty())
    throw HostError(ErrorCode::kBadArgument,
                    std::string("a ") + what + " name cannot be empty");
  if (loading) return;
  if (name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos)
    throw HostError(
        ErrorCode::kBadArgument,
        std::string("\"") + name + "\" is not a valid " + what + " name");
}

void CheckXItem(const host::XItem& item) {
  int code = item.code;
  bool text = code >= 1000 && code <= 1009;
  bool real = (code >= 1010 && code <= 1059) || code == 1071;
  bool integer = code >= 1060 && code <= 1070;
  if (!text && !real && !integer)
    throw HostError(
        ErrorCode::kBadArgument,
        "XData group code " + std::to_string(code) + " is not valid");
  if ((text && !item.value.IsText()) || (real && !item.value.IsReal()) ||
      (integer && !item.value.IsInt()))
    throw HostError(ErrorCode::kBadArgument,
                    "XData group code " + std::to_string(code) +
                        " does not match the kind of its value");
}

}  // namespace

// ---------------------------------------------------------------- objects

void MemObject::SetAllXData(std::vector<XRecord> records) {
  MemEntity* e = AsMemEntity();
  if (e != nullptr)
    ForEachXDataApp(
        [&](const std::string& app) { doc_->OnXDataChanged(*e, app, false); });
  pending_source_.reset();
  pending_apps_.reset();
  xdata_ = std::move(records);
  ++xdata_version_;
  for (const auto& r : xdata_) {
    doc_->RegisterApp(r[0].value.Text());
    if (e != nullptr) doc_->OnXDataChanged(*e, r[0].value.Text(), true);
  }
}

void MemObject::SetPendingXData(std::shared_ptr<const XDataSource> source,
                                XDataApps apps, uint64_t at, uint32_t line) {
  SetAllXData({});
  if (source == nullptr || apps == nullptr) return;
  pending_source_ = std::move(source);
  pending_apps_ = std::move(apps);
  pending_at_ = at;
  pending_line_ = line;
  MemEntity* e = AsMemEntity();
  ForEachXDataApp([&](const std::string& app) {
    doc_->RegisterApp(app);
    if (e != nullptr) doc_->OnXDataChanged(*e, app, true);
  });
}

void MemObject::ParsePendingXData() const {
  // Parsing may fail; the source stays until it has not.
  xdata_ = pending_source_->Parse(pending_at_, pending_line_);
  pending_source_.reset();
  pending_apps_.reset();
}

void MemObject::CheckAlive() const {
  if (erased_) throw HostError(ErrorCode::kErased, Describe() + " was erased");
}

std::string MemObject::Describe() const {
  return "object " + std::to_string(id_);
}

std::optional<XRecord> MemObject::FindXData(const std::string& app) const {
  for (const auto& r : XData())
    if (SameName(r[0].value.Text(), app)) return r;
  return std::nullopt;
}

void MemObject::StoreXData(const XRecord& record) {
  if (record.empty() || record[0].code != 1001 || !record[0].value.IsText() ||
      record[0].value.Text().empty())
    throw HostError(ErrorCode::kBadArgument,
                    "an XData record must start with group code 1001 and an "
                    "application name");
  // One call may carry records of several applications.
  std::vector<XRecord> parts;
  for (const auto& item : record) {
    if (item.code == 1001) {
      if (!item.value.IsText() || item.value.Text().empty())
        throw HostError(ErrorCode::kBadArgument,
                        "group code 1001 needs an application name");
      parts.push_back({item});
    } else {
      CheckXItem(item);
      parts.back().push_back(item);
    }
  }
  if (pending_source_) ParsePendingXData();
  ++xdata_version_;
  for (auto& part : parts) {
    const std::string app = part[0].value.Text();
    doc_->RegisterApp(app);
    auto it = std::find_if(xdata_.begin(), xdata_.end(), [&](const XRecord& r) {
      return SameName(r[0].value.Text(), app);
    });
    if (it != xdata_.end())
      *it = std::move(part);
    else
      xdata_.push_back(std::move(part));
    if (MemEntity* e = AsMemEntity()) doc_->OnXDataChanged(*e, app, true);
  }
}

std::vector<CurvePiece> MemEntity::Pieces() const {
  auto& self = const_cast<MemEntity&>(*this).AsHostEntity();
  throw HostError(
      ErrorCode::kNotSupported,
      "intersections with " + self.ObjectName() + " are not supported");
}

void MemEntity::CheckFlat(const Point3& normal) const {
  if (FacingOf(normal) != Facing::kTilted) return;
  auto& self = const_cast<MemEntity&>(*this).AsHostEntity();
  throw HostError(ErrorCode::kNotSupported,
                  "the " + self.EntityName() + " " + std::to_string(id_) +
                      " lies on a tilted plane, which this system does not "
                      "move or intersect");
}

bool MemEntity::InLayout() const {
  return owner_ != nullptr && owner_->is_layout_ &&
         KindOf() != EntityKind::kAttributeReference;
}

void MemEntity::SetLayerUnchecked(const std::string& layer) {
  if (owner_ != nullptr && !erased_) doc_->OnLayerChanged(*this, layer_, layer);
  layer_ = layer;
}

void MemEntity::CheckModifiable() const {
  CheckAlive();
  if (doc_->Loading()) return;
  MemLayer* layer = doc_->FindLayer(layer_);
  if (layer != nullptr && layer->locked_)
    throw HostError(ErrorCode::kLockedLayer, "entity " + std::to_string(id_) +
                                                 " is on locked layer \"" +
                                                 layer->name_ + "\"");
}

// ----------------------------------------------------------- collections

template <class HostTable, class HostItem, class Record>
HostItem& SymbolTable<HostTable, HostItem, Record>::Item(int index) const {
  if (index < 0 || index >= Count())
    throw HostError(ErrorCode::kBadArgument, std::string("no ") + what_ +
                                                 " at position " +
                                                 std::to_string(index));
  return *records_[index];
}

template <class HostTable, class HostItem, class Record>
HostItem& SymbolTable<HostTable, HostItem, Record>::Item(
    const std::string& name) const {
  if (Record* r = FindItem(name)) return *r;
  throw HostError(ErrorCode::kNoSuchKey,
                  std::string("no ") + what_ + " named \"" + name + "\"");
}

template <class HostTable, class HostItem, class Record>
Record* SymbolTable<HostTable, HostItem, Record>::FindItem(
    const std::string& name) const {
  for (Record* r : records_)
    if (SameName(r->name_, name)) return r;
  return nullptr;
}

template <class HostTable, class HostItem, class Record>
Record& SymbolTable<HostTable, HostItem, Record>::Insert(
    std::unique_ptr<Record> record, uint64_t handle) {
  auto& r = static_cast<Record&>(doc_.RegisterObject(std::move(record), handle));
  records_.push_back(&r);
  return r;
}

template <class HostTable, class HostItem, class Record>
void SymbolTable<HostTable, HostItem, Record>::Remove(Record* record) {
  records_.erase(std::find(records_.begin(), records_.end(), record));
}

template <class HostTable, class HostItem, class Record>
void SymbolTable<HostTable, HostItem, Record>::CheckName(
    const std::string& name) const {
  CheckSymbolName(name, what_, doc_.Loading());
}

template class SymbolTable<host::Blocks, host::Block, MemBlock>;
template class SymbolTable<host::Layers, host::Layer, MemLayer>;
template class SymbolTable<host::TextStyles, host::TextStyle, MemTextStyle>;

host::Block& MemBlocks::Add(const Point3& origin, const std::string& name) {
  return FindOrAdd(name, [&]() -> MemBlock& {
    return doc_.AddBlock(name, origin);
  });
}

host::Layer& MemLayers::Add(const std::string& name) {
  return FindOrAdd(name, [&]() -> MemLayer& { return doc_.AddLayer(name); });
}

host::TextStyle& MemTextStyles::Add(const std::string& name) {
  return FindOrAdd(name,
                   [&]() -> MemTextStyle& { return doc_.AddTextStyle(name); });
}

int MemSelectionSets::Count() const {
  int n = 0;
  for (const auto& s : sets_) n += s->IsDeleted() ? 0 : 1;
  return n;
}

host::SelectionSet& MemSelectionSets::Item(int index) const {
  int n = 0;
  for (const auto& s : sets_) {
    if (s->IsDeleted()) continue;
    if (n++ == index) return *s;
  }
  throw HostError(ErrorCode::kBadArgument,
                  "no selection set at position " + std::to_string(index));
}

host::SelectionSet& MemSelectionSets::Add(const std::string& name) {
  for (const auto& s : sets_)
    if (!s->IsDeleted() && SameName(s->Name(), name))
      throw HostError(ErrorCode::kDuplicateKey,
                      "a selection set named \"" + name + "\" exists");
  if (name.empty())
    throw HostError(ErrorCode::kBadArgument, "a selection set needs a name");
  sets_.push_back(std::make_unique<MemSelectionSet>(doc_, name));
  return *sets_.back();
}

// --------------------------------------------------------- selection set

void MemSelectionSet::CheckLive() const {
  if (deleted_)
    throw HostError(ErrorCode::kErased,
                    "selection set \"" + name_ + "\" was deleted");
}

std::string MemSelectionSet::Name() const {
  CheckLive();
  return name_;
}

int MemSelectionSet::Count() const {
  CheckLive();
  int n = 0;
  for (const MemEntity* e : items_) n += e->IsErased() ? 0 : 1;
  return n;
}

host::Entity& MemSelectionSet::Item(int index) const {
  CheckLive();
  int n = 0;
  for (MemEntity* e : items_) {
    if (e->IsErased()) continue;
    if (n++ == index) return e->AsHostEntity();
  }
  throw HostError(
      ErrorCode::kBadArgument,
      "selection set \"" + name_ + "\" has no item " + std::to_string(index));
}

std::vector<host::Entity*> MemSelectionSet::Entities() const {
  CheckLive();
  std::vector<host::Entity*> out;
  for (MemEntity* e : items_)
    if (!e->IsErased()) out.push_back(&e->AsHostEntity());
  return out;
}

void MemSelectionSet::Add(MemEntity* e) {
  if (positions_.count(e)) return;
  positions_[e] = items_.size();
  items_.push_back(e);
}

void MemSelectionSet::AddItems(const std::vector<host::Entity*>& entities) {
  CheckLive();
  std::vector<MemEntity*> adding;
  for (host::Entity* h : entities) {
    auto* e = dynamic_cast<MemEntity*>(h);
    if (e == nullptr || &e->Doc() != doc_)
      throw HostError(
          ErrorCode::kBadArgument,
          "an entity of another drawing cannot join selection set \"" + name_ +
              "\"");
    if (e->IsErased())
      throw HostError(ErrorCode::kErased,
                      "entity " + std::to_string(e->Id()) + " was erased");
    adding.push_back(e);
  }
  for (MemEntity* e : adding) Add(e);
}

void MemSelectionSet::RemoveItems(const std::vector<host::Entity*>& entities) {
  CheckLive();
  bool changed = false;
  for (host::Entity* h : entities) {
    auto* e = dynamic_cast<MemEntity*>(h);
    if (e != nullptr && positions_.erase(e)) {
      items_.erase(std::find(items_.begin(), items_.end(), e));
      changed = true;
    }
  }
  if (changed) {
    positions_.clear();
    for (size_t i = 0; i < items_.size(); ++i) positions_[items_[i]] = i;
  }
}

void MemSelectionSet::Clear() {
  CheckLive();
  items_.clear();
  positions_.clear();
}

void MemSelectionSet::Select(host::SelectMode mode, const Point3& corner1,
                             const Point3& corner2,
                             const host::Filter& filter) {
  CheckLive();
  std::vector<MemEntity*> found;
  switch (mode) {
    case host::SelectMode::kAll:
      found = doc_->SelectAll(filter);
      break;
    case host::SelectMode::kWindow:
    case host::SelectMode::kCrossing:
      found = doc_->SelectWindow(corner1, corner2,
                                 mode == host::SelectMode::kCrossing, filter);
      break;
    default:
      throw HostError(ErrorCode::kBadArgument, "unknown selection mode");
  }
  for (MemEntity* e : found) Add(e);
}

void MemSelectionSet::SelectOnScreen(const host::Filter& filter) {
  CheckLive();
  CompiledFilter compiled(filter);
  Session& session = doc_->GetSession();
  LogEntry entry;
  entry.kind = LogEntry::Kind::kSelectionRequest;
  entry.text = name_;
  session.Record(entry);
  Input in = session.Next(Input::Kind::kSelection, "an on-screen selection");
  if (in.kind == Input::Kind::kCancel) return;
  std::vector<MemEntity*> picked;
  switch (in.pick) {
    case Input::Pick::kObjects:
      for (ObjectId id : in.objects) {
        auto* e = dynamic_cast<MemEntity*>(doc_->FindById(id));
        if (e == nullptr || e->IsErased() || !e->InLayout())
          throw HostError(
              ErrorCode::kNoSuchObject,
              "no entity with ID " + std::to_string(id) + " can be picked");
        picked.push_back(e);
      }
      break;
    case Input::Pick::kWindow:
    case Input::Pick::kCrossing:
      picked = doc_->SelectWindow(in.corner1, in.corner2,
                                  in.pick == Input::Pick::kCrossing,
                                  in.extra_filter);
      break;
    case Input::Pick::kAll:
      picked = doc_->SelectAll(in.extra_filter);
      break;
  }
  if (in.pick != Input::Pick::kAll && !in.extra_filter.empty()) {
    CompiledFilter extra(in.extra_filter);
    std::erase_if(picked, [&](MemEntity* e) { return !extra.Matches(*e); });
  }
  for (MemEntity* e : picked)
    if (compiled.Matches(*e)) Add(e);
}

void MemSelectionSet::Erase() {
  CheckLive();
  std::vector<MemEntity*> live;
  for (MemEntity* e : items_)
    if (!e->IsErased()) live.push_back(e);
  // All or nothing: a locked entity stops the erase before anything goes.
  for (MemEntity* e : live) {
    MemLayer* layer = doc_->FindLayer(e->LayerName());
    if (layer != nullptr && layer->locked_)
      throw HostError(ErrorCode::kLockedLayer,
                      "entity " + std::to_string(e->Id()) +
                          " is on locked layer \"" + layer->name_ + "\"");
  }
  for (MemEntity* e : live)
    if (!e->IsErased()) e->AsHostEntity().Delete();
  items_.clear();
  positions_.clear();
}

void MemSelectionSet::Delete() {
  CheckLive();
  deleted_ = true;
  items_.clear();
  positions_.clear();
}

// --------------------------------------------------------------- utility

void MemUtility::Prompt(const std::string& text) {
  LogEntry e;
  e.kind = LogEntry::Kind::kPrompt;
  e.text = text;
  doc_.GetSession().Record(e);
}

Point3 MemUtility::GetPoint(const std::optional<Point3>& base,
                            const std::string& prompt) {
  Session& session = doc_.GetSession();
  LogEntry e;
  e.kind = LogEntry::Kind::kPointRequest;
  e.text = prompt;
  session.Record(e);
  Input in = session.Next(Input::Kind::kPoint, "the prompt \"" + prompt + "\"");
  if (in.kind == Input::Kind::kCancel)
    throw HostError(ErrorCode::kUserCancelled,
                    "cancelled at \"" + prompt + "\"");
  return in.point;
}

host::EntityPick MemUtility::GetEntity(const std::string& prompt) {
  Session& session = doc_.GetSession();
  LogEntry e;
  e.kind = LogEntry::Kind::kEntityRequest;
  e.text = prompt;
  session.Record(e);
  Input in =
      session.Next(Input::Kind::kEntity, "the prompt \"" + prompt + "\"");
  if (in.kind == Input::Kind::kCancel)
    throw HostError(ErrorCode::kUserCancelled,
                    "cancelled at \"" + prompt + "\"");
  auto* entity = dynamic_cast<MemEntity*>(doc_.FindById(in.entity));
  if (entity == nullptr || entity->IsErased() || !entity->InLayout())
    throw HostError(
        ErrorCode::kNoSuchObject,
        "no entity with ID " + std::to_string(in.entity) + " can be picked");
  return host::EntityPick{&entity->AsHostEntity(), in.point};
}

// -------------------------------------------------------------- document

MemDocument::MemDocument(std::shared_ptr<MemApplication> app, Options options)
    : app_(app ? std::move(app) : std::make_shared<MemApplication>()),
      options_(options) {
  if (options_.id_policy == IdPolicy::kFresh) {
    uint32_t seed = options_.fresh_seed;
    if (seed == 0)
      seed = static_cast<uint32_t>(
          std::chrono::steady_clock::now().time_since_epoch().count());
    // Fresh IDs start somewhere the handle-derived ones never do.
    fresh_base_ = 100000000ull + (seed % 900000ull) * 1000ull;
  }
  AddBlock("*Model_Space", {}).is_layout_ = true;
  AddBlock("*Paper_Space", {}).is_layout_ = true;
  active_layer_ = &AddLayer("0");
  active_style_ = &AddTextStyle("Standard");
  RegisterApp("ACAD");
  variables_["UCSXDIR"] = Point3{1, 0, 0};
  variables_["UCSYDIR"] = Point3{0, 1, 0};
}

MemDocument::~MemDocument() = default;

ObjectId MemDocument::IdFor(uint64_t handle) {
  uint64_t candidate;
  if (options_.id_policy == IdPolicy::kFresh) {
    candidate = fresh_base_ + fresh_count_++;
  } else if (handle <= 17483647ull) {
    candidate = 2130000000ull + handle;
  } else {
    candidate = ((handle * 0x9E3779B97F4A7C15ull) >> 34) % 2000000000ull + 1;
  }
  while (candidate > 2147483647ull ||
         by_id_.contains(static_cast<ObjectId>(candidate)))
    candidate = candidate > 2147483647ull ? 1 : candidate + 1;
  return static_cast<ObjectId>(candidate);
}

MemObject& MemDocument::RegisterObject(std::unique_ptr<MemObject> object,
                                       uint64_t handle) {
  if (handle == 0) {
    handle = NextHandle();
  } else if (by_handle_.contains(handle)) {
    throw HostError(ErrorCode::kDuplicateKey,
                    "handle " + HexHandle(handle) + " is used twice");
  }
  MemObject& obj = *object;
  obj.doc_ = this;
  obj.handle_ = handle;
  obj.id_ = IdFor(handle);
  obj.seq_ = next_seq_++;
  by_handle_.set(handle, &obj);
  by_id_.set(obj.id_, &obj);
  if (handle >= next_handle_) next_handle_ = handle + 1;
  objects_.push_back(std::move(object));
  return obj;
}

uint64_t MemDocument::NextHandle() {
  while (by_handle_.contains(next_handle_)) ++next_handle_;
  return next_handle_++;
}

uint64_t MemDocument::HandleSeed() const {
  uint64_t h = next_handle_;
  while (by_handle_.contains(h)) ++h;
  return h;
}

void MemDocument::ReserveHandle(uint64_t handle) {
  if (handle == 0 || by_handle_.contains(handle))
    throw HostError(ErrorCode::kDuplicateKey,
                    "handle " + HexHandle(handle) + " is used twice");
  by_handle_.set(handle, nullptr);  // taken, but no object of the model
  if (handle >= next_handle_) next_handle_ = handle + 1;
}

void MemDocument::Rehandle(MemObject& object, uint64_t handle) {
  if (object.handle_ == handle) return;
  if (handle == 0 || by_handle_.contains(handle))
    throw HostError(ErrorCode::kDuplicateKey,
                    "handle " + HexHandle(handle) + " is used twice");
  by_handle_.erase(object.handle_);
  object.handle_ = handle;
  by_handle_.set(handle, &object);
  if (handle >= next_handle_) next_handle_ = handle + 1;
  if (options_.id_policy == IdPolicy::kFromHandle) {
    by_id_.erase(object.id_);
    object.id_ = IdFor(handle);
    by_id_.set(object.id_, &object);
  }
}

MemObject* MemDocument::FindById(ObjectId id) const {
  MemObject* const* found = by_id_.find(id);
  return found == nullptr ? nullptr : *found;
}

MemObject* MemDocument::FindByHandle(uint64_t handle) const {
  MemObject* const* found = by_handle_.find(handle);
  return found == nullptr ? nullptr : *found;
}

host::Block& MemDocument::ModelSpace() { return ModelSpaceBlock(); }

host::Object& MemDocument::ObjectIdToObject(ObjectId id) {
  MemObject* obj = FindById(id);
  if (obj == nullptr)
    throw HostError(ErrorCode::kNoSuchObject,
                    "no object with ID " + std::to_string(id));
  if (obj->IsErased())
    throw HostError(ErrorCode::kErased,
                    "the object with ID " + std::to_string(id) + " was erased");
  return obj->AsHostObject();
}

host::Object& MemDocument::HandleToObject(const std::string& handle) {
  uint64_t value = 0;
  bool ok = !handle.empty() && handle.size() <= 16;
  for (char c : handle) {
    int digit = (c >= '0' && c <= '9')   ? c - '0'
                : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                                         : -1;
    if (digit < 0) ok = false;
    value = value * 16 + static_cast<uint64_t>(std::max(digit, 0));
  }
  MemObject* obj = ok ? FindByHandle(value) : nullptr;
  if (obj == nullptr || obj->IsErased())
    throw HostError(ErrorCode::kNoSuchObject,
                    "no object with handle \"" + handle + "\"");
  return obj->AsHostObject();
}

host::Layer& MemDocument::ActiveLayer() { return *active_layer_; }

void MemDocument::SetActiveLayer(host::Layer& layer) {
  auto* l = dynamic_cast<MemLayer*>(&layer);
  if (l == nullptr || &l->Doc() != this || l->IsErased())
    throw HostError(ErrorCode::kBadArgument,
                    "the layer does not belong to this drawing");
  if (l->frozen_)
    throw HostError(ErrorCode::kBadArgument, "the frozen layer \"" + l->name_ +
                                                 "\" cannot be made current");
  active_layer_ = l;
}

host::TextStyle& MemDocument::ActiveTextStyle() { return *active_style_; }

void MemDocument::SetActiveTextStyle(host::TextStyle& style) {
  auto* s = dynamic_cast<MemTextStyle*>(&style);
  if (s == nullptr || &s->Doc() != this || s->IsErased())
    throw HostError(ErrorCode::kBadArgument,
                    "the text style does not belong to this drawing");
  active_style_ = s;
}

host::SysVar MemDocument::GetVariable(const std::string& name) const {
  std::string key = Upper(name);
  if (key == "CLAYER") return active_layer_->name_;
  if (key == "TEXTSTYLE") return active_style_->name_;
  auto it = variables_.find(key);
  if (it == variables_.end())
    throw HostError(ErrorCode::kNoSuchKey,
                    "no system variable named \"" + name + "\"");
  return it->second;
}

void MemDocument::SetVariable(const std::string& name,
                              const host::SysVar& value) {
  std::string key = Upper(name);
  if (key == "CLAYER" || key == "TEXTSTYLE") {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr)
      throw HostError(ErrorCode::kBadArgument, key + " takes a name");
    if (key == "CLAYER")
      SetActiveLayer(layers_.Item(*text));
    else
      SetActiveTextStyle(styles_.Item(*text));
    return;
  }
  variables_[key] = value;
}

void MemDocument::SendCommand(const std::string& text) {
  LogEntry e;
  e.kind = LogEntry::Kind::kCommand;
  e.text = text;
  GetSession().Record(e);
}

MemBlock* MemDocument::FindBlock(const std::string& name) const {
  return blocks_.FindItem(name);
}

MemLayer* MemDocument::FindLayer(const std::string& name) const {
  return layers_.FindItem(name);
}

MemTextStyle* MemDocument::FindTextStyle(const std::string& name) const {
  return styles_.FindItem(name);
}

MemLayer& MemDocument::AddLayer(const std::string& name, uint64_t handle) {
  auto layer = std::make_unique<MemLayer>();
  layer->name_ = name;
  return layers_.Insert(std::move(layer), handle);
}

MemTextStyle& MemDocument::AddTextStyle(const std::string& name,
                                        uint64_t handle) {
  auto style = std::make_unique<MemTextStyle>();
  style->name_ = name;
  return styles_.Insert(std::move(style), handle);
}

MemBlock& MemDocument::AddBlock(const std::string& name, const Point3& origin,
                                uint64_t handle) {
  auto block = std::make_unique<MemBlock>();
  block->name_ = name;
  block->origin_ = origin;
  return blocks_.Insert(std::move(block), handle);
}

void MemDocument::RegisterApp(const std::string& app) {
  for (const auto& a : apps_)
    if (SameName(a, app)) return;
  apps_.push_back(app);
}

void SequenceIndex::Add(MemEntity* e) {
  if (items_.empty() || items_.back()->Sequence() < e->Sequence()) {
    items_.push_back(e);
    return;
  }
  auto at = std::lower_bound(
      items_.begin(), items_.end(), e->Sequence(),
      [](const MemEntity* x, uint64_t seq) { return x->Sequence() < seq; });
  if (at == items_.end() || *at != e) items_.insert(at, e);
}

void SequenceIndex::Remove(MemEntity* e) {
  auto at = std::lower_bound(
      items_.begin(), items_.end(), e->Sequence(),
      [](const MemEntity* x, uint64_t seq) { return x->Sequence() < seq; });
  if (at != items_.end() && *at == e) items_.erase(at);
}

void SequenceIndex::Compact() const {
  std::erase_if(items_, [](const MemEntity* e) { return e->IsErased(); });
}

std::vector<MemEntity*> MemDocument::SelectAll(
    const host::Filter& filter) const {
  CompiledFilter compiled(filter);
  const SequenceIndex* candidates = &selectable_;
  static const SequenceIndex kNone;
  auto narrow =
      [&](const std::optional<std::string>& key,
          const std::unordered_map<std::string, SequenceIndex>& index) {
        if (!key) return;
        auto it = index.find(*key);
        const auto* found = it == index.end() ? &kNone : &it->second;
        if (found->Size() < candidates->Size()) candidates = found;
      };
  narrow(compiled.RequiredApp(), by_app_);
  narrow(compiled.RequiredType(), by_type_);
  narrow(compiled.RequiredBlock(), by_block_);
  std::vector<MemEntity*> out;
  candidates->ForEach([&](MemEntity* e) {
    if (compiled.Matches(*e)) out.push_back(e);
  });
  return out;
}

std::vector<MemEntity*> MemDocument::SelectWindow(
    const Point3& c1, const Point3& c2, bool crossing,
    const host::Filter& filter) const {
  CompiledFilter compiled(filter);
  Box2 window;
  window.Add(c1.x, c1.y);
  window.Add(c2.x, c2.y);
  std::vector<CurvePiece> frame;
  if (crossing) {
    std::vector<double> xy{window.min_x, window.min_y, window.max_x,
                           window.min_y, window.max_x, window.max_y,
                           window.min_x, window.max_y};
    frame = PolylinePieces(xy, {}, true);
  }
  std::vector<MemEntity*> out;
  selectable_.ForEach([&](MemEntity* e) {
    if (!compiled.Matches(*e)) return;
    Box2 box;
    e->AddExtents(Affine{}, box);
    if (box.empty) return;
    bool take = window.Contains(box);
    if (!take && crossing && window.Overlaps(box)) {
      try {
        take = !IntersectCurves(e->Pieces(), false, frame, false).empty();
      } catch (const HostError&) {
        take = true;  // no curve: the extents decide
      }
    }
    if (take) out.push_back(e);
  });
  return out;
}

void MemDocument::IndexEntity(MemEntity& e) {
  if (!e.InLayout() || e.IsErased()) return;
  selectable_.Add(&e);
  by_type_[Upper(e.AsHostEntity().EntityName())].Add(&e);
  if (auto* ref = e.AsBlockReference())
    by_block_[Upper(ref->block_name_)].Add(&e);
  e.ForEachXDataApp(
      [&](const std::string& app) { by_app_[Upper(app)].Add(&e); });
}

void MemDocument::OnXDataChanged(MemEntity& e, const std::string& app,
                                 bool present) {
  if (!e.InLayout() || e.IsErased()) return;
  auto& slot = by_app_[Upper(app)];
  if (present)
    slot.Add(&e);
  else
    slot.Remove(&e);
}

void MemDocument::OnErased(MemEntity& e) {
  // The indexes skip erased entities and drop them in their own time.
  if (MemLayer* l = FindLayer(e.LayerName())) --l->use_count_;
}

void MemDocument::OnLayerChanged(MemEntity& e, const std::string& from,
                                 const std::string& to) {
  if (MemLayer* l = FindLayer(from)) --l->use_count_;
  if (MemLayer* l = FindLayer(to)) ++l->use_count_;
  (void)e;
}

// ------------------------------------------------------- tables, blocks

std::string MemLayer::Name() const {
  CheckAlive();
  return name_;
}
bool MemLayer::Freeze() const {
  CheckAlive();
  return frozen_;
}
void MemLayer::SetFreeze(bool frozen) {
  CheckAlive();
  if (frozen && &Doc().ActiveLayer() == this)
    throw HostError(ErrorCode::kBadArgument,
                    "the current layer \"" + name_ + "\" cannot be frozen");
  frozen_ = frozen;
}
bool MemLayer::Lock() const {
  CheckAlive();
  return locked_;
}
void MemLayer::SetLock(bool locked) {
  CheckAlive();
  locked_ = locked;
}
bool MemLayer::LayerOn() const {
  CheckAlive();
  return on_;
}
void MemLayer::SetLayerOn(bool on) {
  CheckAlive();
  on_ = on;
}
int MemLayer::TrueColor() const {
  CheckAlive();
  return color_;
}
void MemLayer::SetTrueColor(int color_index) {
  CheckAlive();
  if (color_index < 1 || color_index > 255)
    throw HostError(ErrorCode::kBadArgument,
                    "a layer colour is an index from 1 to 255, not " +
                        std::to_string(color_index));
  color_ = color_index;
}

void MemLayer::Delete() {
  CheckAlive();
  if (name_ == "0" || SameName(name_, "Defpoints"))
    throw HostError(ErrorCode::kInUse,
                    "layer \"" + name_ + "\" cannot be deleted");
  if (&Doc().ActiveLayer() == this)
    throw HostError(ErrorCode::kInUse,
                    "the current layer \"" + name_ + "\" cannot be deleted");
  if (use_count_ > 0)
    throw HostError(ErrorCode::kInUse, "layer \"" + name_ + "\" is in use by " +
                                           std::to_string(use_count_) +
                                           " entities");
  erased_ = true;
  doc_->layers_.Remove(this);
}

std::string MemTextStyle::Name() const {
  CheckAlive();
  return name_;
}
double MemTextStyle::Height() const {
  CheckAlive();
  return height_;
}
void MemTextStyle::SetHeight(double height) {
  CheckAlive();
  if (!(height >= 0))
    throw HostError(ErrorCode::kBadArgument,
                    "a text height cannot be negative");
  height_ = height;
}
double MemTextStyle::Width() const {
  CheckAlive();
  return width_;
}
void MemTextStyle::SetWidth(double factor) {
  CheckAlive();
  if (!(factor > 0))
    throw HostError(ErrorCode::kBadArgument, "a width factor must be positive");
  width_ = factor;
}
std::string MemTextStyle::FontFile() const {
  CheckAlive();
  return font_file_;
}
void MemTextStyle::SetFontFile(const std::string& file) {
  CheckAlive();
  font_file_ = file;
}
double MemTextStyle::ObliqueAngle() const {
  CheckAlive();
  return oblique_;
}
void MemTextStyle::SetObliqueAngle(double angle) {
  CheckAlive();
  oblique_ = angle;
}

template <class Base, class State>
std::string ObjectImpl<Base, State>::Handle() const {
  this->CheckAlive();
  return HexHandle(this->handle_);
}

template <class Base, class State>
host::Document& ObjectImpl<Base, State>::OwnerDocument() const {
  return *this->doc_;
}

template <class Base, class State>
void ObjectImpl<Base, State>::SetXData(const XRecord& record) {
  CheckWritable();
  this->StoreXData(record);
}

template class ObjectImpl<host::Block>;
template class ObjectImpl<host::Layer>;
template class ObjectImpl<host::TextStyle>;
template class ObjectImpl<host::LwPolyline, MemEntity>;
template class ObjectImpl<host::Line, MemEntity>;
template class ObjectImpl<host::Point, MemEntity>;
template class ObjectImpl<host::Circle, MemEntity>;
template class ObjectImpl<host::Arc, MemEntity>;
template class ObjectImpl<host::Ellipse, MemEntity>;
template class ObjectImpl<host::Hatch, MemEntity>;
template class ObjectImpl<host::Text, MemEntity>;
template class ObjectImpl<host::AttributeReference, MemEntity>;
template class ObjectImpl<host::AttributeDefinition, MemEntity>;
template class ObjectImpl<host::BlockReference, MemEntity>;
template class ObjectImpl<host::OtherEntity, MemEntity>;

}  // namespace kestrana::memhost
