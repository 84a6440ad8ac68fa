#include "dxf/writer.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "dxf/binary.h"
#include "dxf/image.h"
#include "dxf/kinds.h"
#include "dxf/reader.h"
#include "dxf/records.h"
#include "dxf/shape.h"
#include "dxf/template.h"
#include "dxf/upgrade.h"

namespace kestrana::dxf {

using memhost::MemBlock;
using memhost::MemDocument;
using memhost::MemEntity;
using memhost::MemObject;

namespace {

bool SameNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 32);
    if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 32);
    if (x != y) return false;
  }
  return true;
}

bool IsPaperLayout(const MemBlock& b) {
  return b.name_.size() >= 12 &&
         SameNoCase(std::string_view(b.name_).substr(0, 12), "*Paper_Space");
}

// Where the text goes when it is streamed: to a sink in pieces of whole
// tags, converted to binary on the way when the file was binary.
class ChunkedOutput {
 public:
  ChunkedOutput(const ByteSink& sink, const BinaryForm* binary)
      : sink_(sink), binary_(binary) {
    if (binary_ != nullptr) sink_(kBinarySentinel);
  }
  void Put(std::string_view text) {
    if (text.empty()) return;
    if (binary_ == nullptr) {
      sink_(text);
      return;
    }
    converted_.clear();
    AppendBinaryTags(text, offset_, line_, *binary_, converted_);
    offset_ += text.size();
    line_ += static_cast<uint32_t>(std::count(text.begin(), text.end(), '\n'));
    sink_(converted_);
  }
  void End() {
    if (binary_ != nullptr && !binary_->after_eof.empty())
      sink_(binary_->after_eof);
  }

 private:
  const ByteSink& sink_;
  const BinaryForm* binary_;
  std::string converted_;
  size_t offset_ = 0;
  uint32_t line_ = 1;
};

class Writer {
 public:
  // With `stream`, the text goes there in pieces and Run returns nothing.
  Writer(MemDocument& doc, FileImage& img, ChunkedOutput* stream = nullptr)
      : doc_(doc), img_(img), stream_(stream), w_(out_, img.eol) {}
  std::string Run();

 private:
  // Hands what is written so far to the stream once it fills a piece;
  // called only between whole objects.
  void Flush(bool last = false) {
    if (stream_ == nullptr || (!last && out_.size() < kWriteChunkBytes))
      return;
    stream_->Put(out_);
    out_.clear();
  }
  uint64_t NewHandle();
  void Prepare();
  void Header(const SectionImage& s);
  void Tables(const SectionImage& s);
  void Table(const TableImage& t);
  void NewTableHead(const TableImage& t, size_t count);
  void Blocks(const SectionImage& s);
  void Entities();
  void WriteEntity(MemEntity& e, uint64_t owner, bool paper);
  // Writes an object from its record: as read while `hash` still matches.
  // Returns true when the object went out as read.
  template <class Fill>
  bool WriteRecorded(MemObject& obj, uint64_t hash, std::string_view type,
                     uint64_t owner, Fill fill, bool moved = false);
  bool LoadOriginal(const Span& span, Shape& shape, int handle_code = 5) const;
  void Raw(const Span& s) { w_.Raw(img_.Bytes(s)); }
  // An object of an R12 file without handles is written without one.
  bool KeepsNoHandle(const ObjectRecord& r) const {
    return r.handle == 0 && !img_.handles;
  }
  // A section kept as read, less the objects whose owner was erased.
  void RawSection(const SectionImage& s);

  MemDocument& doc_;
  FileImage& img_;
  ChunkedOutput* stream_;
  std::string out_;
  TagWriter w_;
};

uint64_t Writer::NewHandle() {
  uint64_t h = doc_.NextHandle();
  doc_.ReserveHandle(h);
  return h;
}

bool Writer::LoadOriginal(const Span& span, Shape& shape,
                          int handle_code) const {
  if (span.Empty()) return false;
  Tokenizer tok(img_.Bytes(span), span.begin);
  Tag first, next;
  if (!tok.Next(first)) return false;
  shape.file = img_.buffer;
  if (ReadObject(tok, first, shape, next)) shape.end_offset = next.offset;
  shape.Build(handle_code);
  return true;
}

// Handles for what the file layer adds around the objects of the model.
void Writer::Prepare() {
  for (MemBlock* b : doc_.BlockList()) {
    if (RecordOf(*b) == nullptr) b->File().Set(ObjectRecord{});
    ObjectRecord& r = *RecordOf(*b);
    if (r.begin_handle == 0 && r.begin_span.Empty())
      r.begin_handle = NewHandle();
    if (r.end_handle == 0 && r.end_span.Empty()) r.end_handle = NewHandle();
    for (MemEntity* e : b->MemEntities()) {
      auto own_handle = [&](MemEntity& part) {
        ObjectRecord* pr = RecordOf(part);
        if (pr != nullptr && pr->read && pr->handle != part.HandleValue() &&
            !KeepsNoHandle(*pr)) {
          // A copy (or an entity the file gave no handle): its own handle,
          // and an insert its own SEQEND. A classic polyline keeps the
          // vertices it was read with.
          pr->copied = true;
          pr->hash = 0;
          if (part.AsBlockReference() != nullptr) {
            pr->end_span = {};
            pr->end_handle = 0;
          }
          pr->handle = part.HandleValue();
        }
      };
      own_handle(*e);
      auto* ref = e->AsBlockReference();
      if (ref != nullptr)
        for (auto* a : ref->Attributes()) own_handle(*a);
      if (ref != nullptr && ref->HasAttributes()) {
        if (RecordOf(*ref) == nullptr) ref->File().Set(ObjectRecord{});
        ObjectRecord& rr = *RecordOf(*ref);
        if (rr.end_span.Empty() && rr.end_handle == 0)
          rr.end_handle = NewHandle();
      }
    }
  }
  // Every application named in extended data gets its APPID entry, and the
  // tables the model needs exist.
  SectionImage* tables = nullptr;
  for (auto& s : img_.sections)
    if (s.kind == SectionImage::Kind::kTables) tables = &s;
  if (tables == nullptr) return;
  for (const char* name : {"LAYER", "STYLE", "APPID", "BLOCK_RECORD"}) {
    // Block records came with R13.
    if (std::string_view(name) == "BLOCK_RECORD" &&
        VersionNumber(img_.version) < kVersionR13)
      continue;
    bool found = false;
    for (const auto& t : tables->tables) found = found || t.name == name;
    if (!found) {
      TableImage t;
      t.name = name;
      t.handle = NewHandle();
      tables->tables.push_back(std::move(t));
    }
  }
  for (auto& t : tables->tables) {
    if (t.name != "APPID") continue;
    for (const std::string& app : doc_.RegisteredApps()) {
      bool found = false;
      for (const auto& item : t.items)
        found = found || SameNoCase(item.name, app);
      if (found) continue;
      TableItem item;
      item.handle = NewHandle();
      item.name = app;
      t.items.push_back(std::move(item));
    }
  }
}

std::string Writer::Run() {
  Prepare();
  out_.reserve(stream_ != nullptr
                   ? kWriteChunkBytes + kWriteChunkBytes / 4
                   : img_.buffer.size() + img_.buffer.size() / 8 + 4096);
  for (const SectionImage& s : img_.sections) {
    switch (s.kind) {
      case SectionImage::Kind::kRaw:
        RawSection(s);
        break;
      case SectionImage::Kind::kHeader:
        Header(s);
        break;
      case SectionImage::Kind::kTables:
        Tables(s);
        break;
      case SectionImage::Kind::kBlocks:
        Blocks(s);
        break;
      case SectionImage::Kind::kEntities:
        Raw(s.head);
        Entities();
        Raw(s.tail);
        break;
    }
    Flush();
  }
  if (img_.trailer.Empty())
    w_.Text(0, "EOF");
  else
    Raw(img_.trailer);
  Flush(true);
  return std::move(out_);
}

// ----------------------------------------------------------- raw sections

void Writer::RawSection(const SectionImage& s) {
  if (s.objects.empty()) {
    Raw(s.span);
    return;
  }
  // An object goes with its owner, as in the CAD program: an erased
  // entity's extension dictionary, the records in that dictionary, ...
  std::unordered_map<uint64_t, const RawObject*> by_handle;
  for (const RawObject& o : s.objects)
    if (o.handle != 0) by_handle.emplace(o.handle, &o);
  std::unordered_map<uint64_t, bool> dead;
  auto is_dead = [&](uint64_t handle) {
    std::vector<uint64_t> chain;
    bool result = false;
    // Up the owners until one is known, erased, live or outside.
    while (true) {
      if (auto it = dead.find(handle); it != dead.end()) {
        result = it->second;
        break;
      }
      auto raw = by_handle.find(handle);
      if (raw == by_handle.end()) {
        MemObject* obj = doc_.FindByHandle(handle);
        result = obj != nullptr && obj->IsErased();
        break;
      }
      chain.push_back(handle);
      handle = raw->second->owner;
      if (handle == 0 || chain.size() > by_handle.size()) break;  // a loop
    }
    for (uint64_t h : chain) dead[h] = result;
    return result;
  };
  size_t at = s.span.begin;
  for (const RawObject& o : s.objects) {
    bool drop = o.owner != 0 && is_dead(o.owner);
    if (o.handle != 0) dead[o.handle] = drop;
    if (!drop) continue;
    Raw({at, o.span.begin});
    at = o.span.end;
  }
  Raw({at, s.span.end});
}

// ----------------------------------------------------------------- header

void Writer::Header(const SectionImage& s) {
  Raw(s.head);
  const TextCodec& codec = img_.codec;
  uint64_t seed = doc_.HandleSeed();
  std::string clayer = doc_.ActiveLayer().Name();
  std::string style = doc_.ActiveTextStyle().Name();
  auto point = [&](const char* name) {
    host::SysVar v = doc_.GetVariable(name);
    const auto* p = std::get_if<host::Point3>(&v);
    return p ? *p : host::Point3{};
  };
  host::Point3 xdir = point("UCSXDIR"), ydir = point("UCSYDIR");
  bool wrote_seed = false, wrote_layer = false, wrote_style = false,
       wrote_x = false, wrote_y = false;
  auto write_point = [&](const char* name, const host::Point3& p) {
    w_.Text(9, name);
    w_.Point(10, p.x, p.y, p.z);
  };
  for (const HeaderVar& var : s.vars) {
    if (var.name == "$ACADVER" && !img_.upgraded_from.empty()) {
      w_.Text(9, "$ACADVER");
      w_.Text(1, img_.version);
    } else if (var.name == "$HANDSEED") {
      wrote_seed = true;
      Shape shape;
      uint64_t old = 0;
      Tokenizer tok(img_.Bytes(var.span), var.span.begin);
      Tag t;
      while (tok.Next(t))
        if (t.code == 5) ParseHandle(t.value, old);
      if (old == seed) {
        Raw(var.span);
      } else {
        w_.Text(9, "$HANDSEED");
        w_.Handle(5, seed);
      }
    } else if (var.name == "$CLAYER") {
      wrote_layer = true;
      if (clayer == img_.clayer)
        Raw(var.span);
      else
        w_.Text(9, "$CLAYER"), w_.Text(8, codec.Encode(clayer));
    } else if (var.name == "$TEXTSTYLE") {
      wrote_style = true;
      if (style == img_.textstyle)
        Raw(var.span);
      else
        w_.Text(9, "$TEXTSTYLE"), w_.Text(7, codec.Encode(style));
    } else if (var.name == "$UCSXDIR") {
      wrote_x = true;
      if (xdir == img_.ucsxdir)
        Raw(var.span);
      else
        write_point("$UCSXDIR", xdir);
    } else if (var.name == "$UCSYDIR") {
      wrote_y = true;
      if (ydir == img_.ucsydir)
        Raw(var.span);
      else
        write_point("$UCSYDIR", ydir);
    } else {
      Raw(var.span);
    }
  }
  if (!wrote_seed && img_.handles) w_.Text(9, "$HANDSEED"), w_.Handle(5, seed);
  if (!wrote_layer && clayer != "0")
    w_.Text(9, "$CLAYER"), w_.Text(8, codec.Encode(clayer));
  if (!wrote_style && style != "Standard")
    w_.Text(9, "$TEXTSTYLE"), w_.Text(7, codec.Encode(style));
  if (!wrote_x && !(xdir == host::Point3{1, 0, 0}))
    write_point("$UCSXDIR", xdir);
  if (!wrote_y && !(ydir == host::Point3{0, 1, 0}))
    write_point("$UCSYDIR", ydir);
  Raw(s.tail);
}

// ----------------------------------------------------------------- tables

template <class Fill>
bool Writer::WriteRecorded(MemObject& obj, uint64_t hash, std::string_view type,
                           uint64_t owner, Fill fill, bool moved) {
  ObjectRecord* r = RecordOf(obj);
  // A copy, an object the file gave no handle, or an entity that now lives
  // in another block than its file said gets a head of its own.
  bool fresh = r != nullptr && (r->copied ||
                                (r->handle != obj.HandleValue() &&
                                 !KeepsNoHandle(*r)) ||
                                moved);
  bool xdata_as_read = r != nullptr && r->xdata_version == obj.XDataVersion();
  if (r != nullptr && r->read && !fresh && r->hash == hash && xdata_as_read) {
    Raw(r->span);
    return true;
  }
  Shape original;
  bool has = r != nullptr && r->read && LoadOriginal(r->span, original);
  WritePlan plan;
  plan.type = type;
  plan.handle = obj.HandleValue();
  plan.owner = owner;
  plan.original = has ? &original : nullptr;
  plan.fresh_head = has && fresh;
  plan.xdata_as_read = xdata_as_read;
  fill(plan, plan.original);
  WriteObject(plan, w_, img_.codec);
  return false;
}

void Writer::Tables(const SectionImage& s) {
  Raw(s.head);
  for (const TableImage& t : s.tables) Table(t);
  Raw(s.tail);
}

void Writer::NewTableHead(const TableImage& t, size_t count) {
  w_.Text(0, "TABLE");
  w_.Text(2, t.name);
  w_.Handle(5, t.handle);
  w_.Text(330, "0");
  w_.Text(100, "AcDbSymbolTable");
  w_.Int(70, static_cast<int64_t>(count));
}

void Writer::Table(const TableImage& t) {
  bool modelled = t.name == "LAYER" || t.name == "STYLE" || t.name == "APPID" ||
                  t.name == "BLOCK_RECORD";
  if (!modelled) {
    if (t.head_anew) {
      NewTableHead(t, t.count_read);
      Raw({t.head.end, t.tail.end});
    } else {
      Raw({t.head.begin, t.tail.end});
    }
    return;
  }
  std::string body;
  std::swap(body, out_);  // entries first, to count them for the head
  size_t count = 0;
  std::unordered_set<uint64_t> listed;
  for (const TableItem& item : t.items) {
    if (item.raw) {
      Raw(item.span);
      ++count;
      continue;
    }
    listed.insert(item.handle);
    if (t.name == "APPID") {
      WritePlan plan;
      plan.type = "APPID";
      plan.handle = item.handle;
      plan.owner = t.handle;
      plan.groups.emplace_back("AcDbSymbolTableRecord");
      FieldGroup& g = plan.groups.emplace_back("AcDbRegAppTableRecord");
      g.Text(2, item.name);
      g.Int(70, 0);
      WriteObject(plan, w_, img_.codec);
      ++count;
      continue;
    }
    MemObject* obj = doc_.FindByHandle(item.handle);
    if (obj == nullptr || obj->IsErased()) continue;
    if (auto* l = dynamic_cast<memhost::MemLayer*>(obj)) {
      WriteRecorded(
          *l, LayerHash(*l), "LAYER", t.handle,
          [&](WritePlan& plan, const Shape* o) { LayerPlan(*l, o, plan); });
    } else if (auto* st = dynamic_cast<memhost::MemTextStyle*>(obj)) {
      WriteRecorded(
          *st, StyleHash(*st), "STYLE", t.handle,
          [&](WritePlan& plan, const Shape*) { StylePlan(*st, plan); });
    } else if (auto* b = dynamic_cast<MemBlock*>(obj)) {
      WriteRecorded(
          *b, BlockHash(*b), "BLOCK_RECORD", t.handle,
          [&](WritePlan& plan, const Shape*) { BlockRecordPlan(*b, plan); });
    } else {
      continue;
    }
    ++count;
  }
  // Objects the logic added.
  if (t.name == "LAYER") {
    for (auto* l : doc_.LayerList())
      if (!listed.count(l->HandleValue())) {
        WriteRecorded(
            *l, LayerHash(*l), "LAYER", t.handle,
            [&](WritePlan& plan, const Shape* o) { LayerPlan(*l, o, plan); });
        ++count;
      }
  } else if (t.name == "STYLE") {
    for (auto* st : doc_.TextStyleList())
      if (!listed.count(st->HandleValue())) {
        WriteRecorded(
            *st, StyleHash(*st), "STYLE", t.handle,
            [&](WritePlan& plan, const Shape*) { StylePlan(*st, plan); });
        ++count;
      }
  } else if (t.name == "BLOCK_RECORD") {
    for (auto* b : doc_.BlockList())
      if (!listed.count(b->HandleValue())) {
        WriteRecorded(
            *b, BlockHash(*b), "BLOCK_RECORD", t.handle,
            [&](WritePlan& plan, const Shape*) { BlockRecordPlan(*b, plan); });
        ++count;
      }
  }
  std::swap(body, out_);

  if (t.head.Empty() || t.head_anew) {
    NewTableHead(t, count);
  } else if (count == t.count_read) {
    Raw(t.head);
  } else {
    // The entry count changed: the head again with the new count.
    Shape head;
    LoadOriginal(t.head, head);
    bool done = false;
    for (size_t i = 0; i < head.tags.size(); ++i) {
      if (!done && head.tags[i].code == 70) {
        w_.Int(70, static_cast<int64_t>(count));
        done = true;
      } else {
        w_.Raw(head.TagBytes(i));
      }
    }
  }
  out_ += body;
  if (t.tail.Empty())
    w_.Text(0, "ENDTAB");
  else
    Raw(t.tail);
}

// ----------------------------------------------------------------- blocks

void Writer::Blocks(const SectionImage& s) {
  Raw(s.head);
  std::vector<MemBlock*> order;
  std::unordered_set<MemBlock*> seen;
  for (uint64_t h : s.blocks) {
    auto* b = dynamic_cast<MemBlock*>(doc_.FindByHandle(h));
    if (b != nullptr && !b->IsErased() && seen.insert(b).second)
      order.push_back(b);
  }
  for (MemBlock* b : doc_.BlockList())
    if (seen.insert(b).second) order.push_back(b);

  for (MemBlock* b : order) {
    ObjectRecord& r = *RecordOf(*b);
    bool paper = IsPaperLayout(*b);
    uint64_t hash = BlockHash(*b);
    if (!r.begin_span.Empty() && r.hash == hash) {
      Raw(r.begin_span);
    } else {
      Shape original;
      bool has = LoadOriginal(r.begin_span, original);
      WritePlan plan;
      plan.handle = r.begin_handle;
      plan.owner = b->HandleValue();
      plan.original = has ? &original : nullptr;
      BlockBeginPlan(*b, paper, plan);
      WriteObject(plan, w_, img_.codec);
    }
    // Entities of model space and the active paper space live in ENTITIES.
    if (b != &doc_.ModelSpaceBlock() && b != &doc_.PaperSpaceBlock())
      for (MemEntity* e : b->MemEntities()) {
        WriteEntity(*e, b->HandleValue(), paper);
        Flush();
      }
    if (!r.end_span.Empty()) {
      Raw(r.end_span);
    } else {
      WritePlan plan;
      plan.handle = r.end_handle;
      plan.owner = b->HandleValue();
      BlockEndPlan(paper, plan);
      WriteObject(plan, w_, img_.codec);
    }
  }
  Raw(s.tail);
}

void Writer::Entities() {
  std::vector<MemEntity*> model = doc_.ModelSpaceBlock().MemEntities();
  std::vector<MemEntity*> paper = doc_.PaperSpaceBlock().MemEntities();
  uint64_t model_handle = doc_.ModelSpaceBlock().HandleValue();
  uint64_t paper_handle = doc_.PaperSpaceBlock().HandleValue();
  // Both spaces in the order they were read (new entities last).
  size_t i = 0, j = 0;
  while (i < model.size() || j < paper.size()) {
    if (j == paper.size() ||
        (i < model.size() && model[i]->Sequence() < paper[j]->Sequence())) {
      WriteEntity(*model[i++], model_handle, false);
    } else {
      WriteEntity(*paper[j++], paper_handle, true);
    }
    Flush();
  }
}

void Writer::WriteEntity(MemEntity& e, uint64_t owner, bool paper) {
  ObjectRecord* r = RecordOf(e);
  host::Entity& he = e.AsHostEntity();
  bool moved = false;
  if (r != nullptr && r->owner != 0 && r->owner != e.Owner().HandleValue())
    if (auto* b = dynamic_cast<MemBlock*>(doc_.FindByHandle(r->owner)))
      moved = b != &e.Owner();
  bool as_read = WriteRecorded(
      e, EntityHash(e), he.EntityName(), owner,
      [&](WritePlan& plan, const Shape* original) {
        WriteContext ctx{doc_, img_.codec, original, paper};
        EntityPlan(e, ctx, plan);
      },
      moved);
  auto* ref = e.AsBlockReference();
  if (ref == nullptr) {
    if (r != nullptr && !r->end_span.Empty()) Raw(r->end_span);  // vertices
    return;
  }
  if (!ref->HasAttributes()) {
    // A reference written as read keeps the SEQEND it was read with.
    if (as_read && !r->end_span.Empty()) Raw(r->end_span);
    return;
  }
  for (auto* a : ref->Attributes())
    if (!a->IsErased()) WriteEntity(*a, e.HandleValue(), paper);
  r = RecordOf(e);
  if (r != nullptr && !r->end_span.Empty()) {
    Raw(r->end_span);
    return;
  }
  WritePlan plan;
  plan.type = "SEQEND";
  plan.handle = r ? r->end_handle : NewHandle();
  plan.owner = e.HandleValue();
  FieldGroup& g = plan.groups.emplace_back("AcDbEntity");
  if (paper) g.Int(67, 1);
  g.Text(8, e.LayerName());
  WriteObject(plan, w_, img_.codec);
}

}  // namespace

void WriteDxf(MemDocument& doc, const ByteSink& sink) {
  if (ImageOf(doc) == nullptr) {
    ReadDxf(doc, NewDrawingTemplate(doc));
    // The template has the defaults' state but not their extended data:
    // they are written from their state.
    auto from_state = [](MemObject& obj) {
      if (ObjectRecord* r = RecordOf(obj)) {
        r->hash = 0;
        r->xdata_version = ObjectRecord::kXDataRewrite;
      }
    };
    for (MemBlock* b : doc.BlockList()) from_state(*b);
    for (auto* l : doc.LayerList()) from_state(*l);
    for (auto* s : doc.TextStyleList()) from_state(*s);
  }
  FileImage& image = *ImageOf(doc);
  if (VersionNumber(image.version) >= kVersionR2000) {
    ChunkedOutput out(sink, image.binary ? &*image.binary : nullptr);
    Writer(doc, image, &out).Run();
    out.End();
    return;
  }
  std::string text = Writer(doc, image).Run();
  // An old drawing the logic changed: its own version cannot hold what
  // was added.
  if (text != image.buffer) {
    UpgradeToR2000(doc, image);
    text = Writer(doc, image).Run();
    // A damaged old drawing can come out of the rewrite in a form that does
    // not read again (entries of one table run into the next): refuse to
    // write it rather than leave a file nothing opens.
    MemDocument again;
    try {
      ReadDxf(again, text);
    } catch (const DxfError& e) {
      throw DxfError(0, "the drawing cannot be saved in R2000 form: the "
                        "rewritten file would not read (" +
                            std::string(e.what()) +
                            "); open and save it in a CAD program first");
    }
  }
  ChunkedOutput out(sink, image.binary ? &*image.binary : nullptr);
  out.Put(text);
  out.End();
}

std::string WriteDxf(MemDocument& doc) {
  std::string bytes;
  WriteDxf(doc, [&](std::string_view piece) { bytes.append(piece); });
  return bytes;
}

}  // namespace kestrana::dxf
