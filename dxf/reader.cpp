#include "dxf/reader.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

#include "dxf/image.h"
#include "dxf/kinds.h"
#include "dxf/records.h"
#include "dxf/shape.h"

namespace kestrana::dxf {

using memhost::MemBlock;
using memhost::MemDocument;
using memhost::MemEntity;
using memhost::MemObject;

namespace {

bool StartsWithNoCase(std::string_view s, std::string_view prefix) {
  if (s.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    char a = s[i], b = prefix[i];
    if (a >= 'a' && a <= 'z') a = static_cast<char>(a - 32);
    if (b >= 'a' && b <= 'z') b = static_cast<char>(b - 32);
    if (a != b) return false;
  }
  return true;
}

std::string Quoted(std::string_view s) {
  std::string out = "\"";
  for (char c : s.substr(0, 60))
    out += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
  return out + (s.size() > 60 ? "...\"" : "\"");
}

// Versions are "AC" and a four-digit number; releases before R12 wrote
// others ("AC2.10") or numbers below 1009.
void CheckVersion(const std::string& version, uint32_t line) {
  int number = VersionNumber(version);
  if (number < 0)
    throw DxfError(line,
                   "$ACADVER should name a DXF version such as AC1015, found " +
                       Quoted(version) +
                       (version.substr(0, 2) == "AC"
                            ? "; drawings from before R12 are not read"
                            : ""));
  if (number < kVersionR12)
    throw DxfError(line, "the drawing is DXF version " + version +
                             ", from before R12; kestrana reads R12 (AC1009) "
                             "and later");
}

class Reader {
 public:
  Reader(MemDocument& doc, std::shared_ptr<FileImage> image)
      : doc_(doc),
        image_(std::move(image)),
        img_(*image_),
        tok_(img_.buffer),
        ctx_{doc, img_.codec, {}} {
    shape_.file = img_.buffer;
    initial_seed_ = doc_.HandleSeed();
    UseCodec();
  }

  void Run();

 private:
  // Texts from here on are read with img_.codec.
  void UseCodec() {
    xdata_ = std::make_shared<FileXData>(
        std::shared_ptr<const std::string>(image_, &img_.buffer), img_.codec);
  }
  // The next tag, or a DxfError saying what the file ended inside.
  void Advance(const char* inside);
  [[noreturn]] void Unexpected(const char* expected);
  void ReadSection();
  void ReadHeader(SectionImage& section);
  void ReadRawSection(SectionImage& section);
  void ReadTables(SectionImage& section);
  void ReadTable(SectionImage& section);
  void ReadTableEntry(TableImage& table);
  void ReadBlocks(SectionImage& section);
  void ReadEntitiesSection();
  // Reads the object starting at tag_ into shape_; tag_ moves past it.
  void ReadShape(int handle_code = 5);
  // Entities until a "0" tag named `stop` (or ENDSEC); `owner` null: by 330.
  void ReadEntities(MemBlock* owner, std::string_view stop);
  void ReadEntity(MemBlock* owner);
  void ClaimHandle(uint64_t handle, uint32_t line);
  // ClaimHandle for something kept outside the model.
  void ReserveRaw(uint64_t handle, uint32_t line);
  void Claim(MemObject& obj, uint64_t handle, uint32_t line);
  void Finish();

  MemDocument& doc_;
  std::shared_ptr<FileImage> image_;
  FileImage& img_;
  Tokenizer tok_;
  // Parses extended data when it is used; keeps the file's text alive.
  std::shared_ptr<FileXData> xdata_;
  ReadContext ctx_;
  Tag tag_;
  bool at_end_ = false;
  Shape shape_;
  // Where each handle of something kept outside the model was met, to
  // name both lines of a duplicate; objects of the model know their line.
  std::unordered_map<uint64_t, uint32_t> raw_lines_;
  // Objects the file gave no handle; they may move aside for later ones.
  std::vector<MemObject*> unhandled_;
  uint64_t max_handle_ = 0;
  uint64_t initial_seed_ = 0;
  MemBlock* last_owner_ = nullptr;
  uint32_t section_line_ = 0;
  std::string section_name_;
  uint64_t file_seed_ = 0;
  uint32_t eof_line_ = 0;
};

void Reader::Advance(const char* inside) {
  if (!tok_.Next(tag_))
    throw DxfError(tok_.Line() > 1 ? tok_.Line() - 1 : 1,
                   std::string("the file ends inside ") + inside +
                       (section_line_ ? " (started at line " +
                                            std::to_string(section_line_) + ")"
                                      : std::string()) +
                       "; it is truncated");
}

void Reader::Unexpected(const char* expected) {
  throw DxfError(tag_.line, std::string("expected ") + expected + ", found " +
                                std::to_string(tag_.code) + " " +
                                Quoted(tag_.value));
}

void Reader::ReadShape(int handle_code) {
  Tag next;
  bool more = ReadObject(tok_, tag_, shape_, next);
  shape_.Build(handle_code);
  if (!more) {
    std::string where = "the " + section_name_ + " section";
    throw DxfError(tok_.Line() > 1 ? tok_.Line() - 1 : 1,
                   "the file ends inside " + where + " (started at line " +
                       std::to_string(section_line_) + "); expected 0 ENDSEC");
  }
  tag_ = next;
}

// Objects read from the file with a handle of their own.
bool FromFile(MemObject& obj) {
  const ObjectRecord* r = RecordOf(obj);
  return r != nullptr && r->read && r->handle != 0;
}

void Reader::ClaimHandle(uint64_t handle, uint32_t line) {
  auto duplicate = [&](uint32_t first) {
    throw DxfError(line, "handle " + FormatHandle(handle) +
                             " is already used by the object at line " +
                             std::to_string(first));
  };
  if (auto it = raw_lines_.find(handle); it != raw_lines_.end())
    duplicate(it->second);
  if (MemObject* holder = doc_.FindByHandle(handle)) {
    if (FromFile(*holder)) duplicate(RecordOf(*holder)->line);
    // Objects the file did not give this handle (defaults, layers made for
    // entities on undeclared layers, ...) move aside.
    doc_.Rehandle(*holder, doc_.NextHandle());
  }
  max_handle_ = std::max(max_handle_, handle);
}

void Reader::ReserveRaw(uint64_t handle, uint32_t line) {
  if (handle == 0) return;
  ClaimHandle(handle, line);
  raw_lines_.emplace(handle, line);
  doc_.ReserveHandle(handle);
}

void Reader::Claim(MemObject& obj, uint64_t handle, uint32_t line) {
  if (handle != 0) {
    ClaimHandle(handle, line);
    doc_.Rehandle(obj, handle);
  }
}

void Reader::Run() {
  std::string_view text = img_.buffer;
  if (text.empty())
    throw DxfError(1, "the file is empty; expected a DXF drawing");
  size_t nl = text.find('\n');
  img_.eol = nl != std::string_view::npos && nl > 0 && text[nl - 1] == '\r'
                 ? "\r\n"
                 : "\n";
  size_t prefix_begin = 0;
  try {
    if (!tok_.Next(tag_)) throw DxfError(1, "the file holds no DXF tags");
  } catch (const DxfError& e) {
    throw DxfError(0, std::string(e.what()) + "; this is not a DXF drawing");
  }
  while (true) {
    if (tag_.code == 999) {  // comments between sections stay where they are
      if (!tok_.Next(tag_))
        throw DxfError(tok_.Line() - 1, "the file ends without 0 EOF");
      continue;
    }
    if (tag_.code == 0 && tag_.value == "EOF") {
      if (prefix_begin < tag_.offset) {
        SectionImage raw;
        raw.span = {prefix_begin, tag_.offset};
        img_.sections.push_back(std::move(raw));
      }
      img_.trailer = {tag_.offset, text.size()};
      eof_line_ = tag_.line;
      break;
    }
    if (tag_.code != 0 || tag_.value != "SECTION") {
      if (tag_.line == 1)
        throw DxfError(
            1, "expected 0 SECTION at the start of a DXF file, found " +
                   std::to_string(tag_.code) + " " + Quoted(tag_.value) +
                   "; this is not a DXF drawing");
      Unexpected("0 SECTION or 0 EOF");
    }
    if (prefix_begin < tag_.offset) {
      SectionImage raw;
      raw.span = {prefix_begin, tag_.offset};
      img_.sections.push_back(std::move(raw));
    }
    ReadSection();
    prefix_begin = tag_.offset;
    if (at_end_)
      throw DxfError(tok_.Line() > 1 ? tok_.Line() - 1 : 1,
                     "the file ends without 0 EOF; it is truncated");
  }
  Finish();
}

void Reader::ReadSection() {
  size_t start = tag_.offset;
  section_line_ = tag_.line;
  section_name_ = "a section";
  Advance("a section");
  if (tag_.code != 2)
    Unexpected("2 and the name of the section after 0 SECTION");
  SectionImage section;
  section.name = std::string(tag_.value);
  section_name_ = section.name;
  Advance(section_name_.c_str());
  section.head = {start, tag_.offset};
  if (section.name == "HEADER") {
    section.kind = SectionImage::Kind::kHeader;
    ReadHeader(section);
  } else if (section.name == "TABLES") {
    section.kind = SectionImage::Kind::kTables;
    ReadTables(section);
  } else if (section.name == "BLOCKS") {
    section.kind = SectionImage::Kind::kBlocks;
    ReadBlocks(section);
  } else if (section.name == "ENTITIES") {
    section.kind = SectionImage::Kind::kEntities;
    ReadEntitiesSection();
  } else {
    ReadRawSection(section);
  }
  // tag_ is "0 ENDSEC".
  size_t tail_begin = tag_.offset;
  at_end_ = !tok_.Next(tag_);
  section.tail = {tail_begin, at_end_ ? img_.buffer.size() : tag_.offset};
  section.span = {start, section.tail.end};
  for (const auto& s : img_.sections)
    if (s.kind != SectionImage::Kind::kRaw && s.kind == section.kind)
      throw DxfError(section_line_,
                     "the " + section.name + " section appears twice");
  if (section.kind != SectionImage::Kind::kHeader && img_.version.empty())
    throw DxfError(section_line_, "the " + section.name +
                                      " section comes before a HEADER section "
                                      "naming the DXF version ($ACADVER)");
  img_.sections.push_back(std::move(section));
  section_line_ = 0;
}

void Reader::ReadHeader(SectionImage& section) {
  while (!(tag_.code == 0 && tag_.value == "ENDSEC")) {
    if (tag_.code == 0) Unexpected("0 ENDSEC to close the HEADER section");
    if (tag_.code != 9)
      Unexpected("9 and a $VARIABLE name in the HEADER section");
    HeaderVar var;
    var.name = std::string(tag_.value);
    size_t begin = tag_.offset;
    std::vector<Tag> values;
    Advance("the HEADER section");
    while (tag_.code != 9 && tag_.code != 0) {
      values.push_back(tag_);
      Advance("the HEADER section");
    }
    var.span = {begin, tag_.offset};
    auto point = [&](host::Point3& p) {
      for (const Tag& t : values) {
        if (t.code == 10)
          p.x = RealValue(t);
        else if (t.code == 20)
          p.y = RealValue(t);
        else if (t.code == 30)
          p.z = RealValue(t);
      }
    };
    auto first = [&]() -> const Tag& {
      if (values.empty())
        throw DxfError(tag_.line,
                       "the header variable " + var.name + " has no value");
      return values.front();
    };
    if (var.name == "$ACADVER") {
      img_.version = std::string(first().value);
      CheckVersion(img_.version, first().line + 1);
    } else if (var.name == "$HANDLING") {
      int64_t handling = 1;
      ParseInt(first().value, handling);
      img_.handles = handling != 0 || VersionNumber(img_.version) >= kVersionR13;
    } else if (var.name == "$DWGCODEPAGE") {
      img_.codepage = std::string(first().value);
    } else if (var.name == "$HANDSEED") {
      file_seed_ = HandleValue(first());
    } else if (var.name == "$CLAYER") {
      img_.clayer = std::string(first().value);
    } else if (var.name == "$TEXTSTYLE") {
      img_.textstyle = std::string(first().value);
    } else if (var.name == "$UCSXDIR") {
      point(img_.ucsxdir);
    } else if (var.name == "$UCSYDIR") {
      point(img_.ucsydir);
    }
    section.vars.push_back(std::move(var));
  }
  if (img_.version.empty())
    throw DxfError(
        section_line_,
        "the HEADER section does not name the DXF version ($ACADVER)");
  img_.codec = TextCodec::For(img_.version, img_.codepage);
  UseCodec();
  img_.clayer = img_.codec.Decode(img_.clayer);
  img_.textstyle = img_.codec.Decode(img_.textstyle);
}

void Reader::ReadRawSection(SectionImage& section) {
  while (!(tag_.code == 0 && tag_.value == "ENDSEC")) {
    // Sections of plain tags (THUMBNAILIMAGE) hold no objects.
    if (tag_.code != 0) {
      Advance(("the " + section.name + " section").c_str());
      continue;
    }
    if (tag_.value == "SECTION" || tag_.value == "EOF")
      Unexpected(
          ("0 ENDSEC to close the " + section.name + " section").c_str());
    size_t begin = tag_.offset;
    ReadShape();
    ReserveRaw(shape_.handle, shape_.Line());
    section.objects.push_back(
        {{begin, shape_.end_offset}, shape_.handle, shape_.owner});
  }
}

// ----------------------------------------------------------------- tables

void Reader::ReadTables(SectionImage& section) {
  while (!(tag_.code == 0 && tag_.value == "ENDSEC")) {
    if (tag_.code != 0 || tag_.value != "TABLE")
      Unexpected("0 TABLE or 0 ENDSEC in the TABLES section");
    ReadTable(section);
  }
}

void Reader::ReadTable(SectionImage& section) {
  TableImage table;
  size_t begin = tag_.offset;
  uint32_t line = tag_.line;
  ReadShape();
  for (size_t i = 1; i < shape_.tags.size(); ++i) {
    const Tag& t = shape_.tags[i];
    if (t.code == 2 && table.name.empty()) table.name = std::string(t.value);
    if (t.code == 5 && table.handle == 0) table.handle = HandleValue(t);
    if (t.code == 100) break;
  }
  if (table.name.empty())
    throw DxfError(
        line,
        "the table has no name (expected 2 and a table name after 0 TABLE)");
  ReserveRaw(table.handle, line);
  table.head = {begin, tag_.offset};
  while (!(tag_.code == 0 && tag_.value == "ENDTAB")) {
    if (tag_.code == 0 && (tag_.value == "ENDSEC" || tag_.value == "TABLE" ||
                           tag_.value == "SECTION" || tag_.value == "EOF"))
      Unexpected(("0 ENDTAB to close the " + table.name +
                  " table (started at line " + std::to_string(line) + ")")
                     .c_str());
    ReadTableEntry(table);
  }
  size_t tail_begin = tag_.offset;
  ReadShape();  // ENDTAB
  table.tail = {tail_begin, tag_.offset};
  for (const auto& t : section.tables)
    if (t.name == table.name)
      throw DxfError(line, "the " + table.name + " table appears twice");
  section.tables.push_back(std::move(table));
}

void Reader::ReadTableEntry(TableImage& table) {
  std::string_view type = tag_.value;
  size_t begin = tag_.offset;
  bool dimstyle = type == "DIMSTYLE";
  ReadShape(dimstyle ? 105 : 5);
  Span span{begin, shape_.end_offset};
  ++table.count_read;
  std::string name;
  for (size_t i = shape_.head_end; i < shape_.xdata_begin; ++i)
    if (shape_.tags[i].code == 2) {
      name = img_.codec.Decode(shape_.tags[i].value);
      break;
    }
  TableItem item;
  item.span = span;
  item.name = name;
  MemObject* obj = nullptr;
  auto check_twice = [&](MemObject* existing) {
    if (existing != nullptr && RecordOf(*existing) != nullptr &&
        RecordOf(*existing)->read)
      throw DxfError(shape_.Line(), "the " + table.name + " entry " +
                                        Quoted(name) + " is defined twice");
  };
  if (shape_.Type() == "LAYER" && table.name == "LAYER" && !name.empty()) {
    memhost::MemLayer* layer = doc_.FindLayer(name);
    check_twice(layer);
    if (layer == nullptr) layer = &doc_.AddLayer(name);
    Claim(*layer, shape_.handle, shape_.Line());
    ReadLayerRecord(shape_, *layer, img_.codec);
    obj = layer;
  } else if (shape_.Type() == "STYLE" && table.name == "STYLE" &&
             !name.empty()) {
    memhost::MemTextStyle* style = doc_.FindTextStyle(name);
    check_twice(style);
    if (style == nullptr) style = &doc_.AddTextStyle(name);
    Claim(*style, shape_.handle, shape_.Line());
    ReadStyleRecord(shape_, *style, img_.codec);
    obj = style;
  } else if (shape_.Type() == "BLOCK_RECORD" && table.name == "BLOCK_RECORD" &&
             !name.empty()) {
    MemBlock* block = doc_.FindBlock(name);
    check_twice(block);
    if (block == nullptr) block = &doc_.AddBlock(name, {});
    Claim(*block, shape_.handle, shape_.Line());
    block->name_ = name;
    if (StartsWithNoCase(name, "*Paper_Space") ||
        StartsWithNoCase(name, "*Model_Space"))
      block->is_layout_ = true;
    obj = block;
  } else {
    ReserveRaw(shape_.handle, shape_.Line());
    if (table.name == "APPID" && !name.empty()) doc_.RegisterApp(name);
    item.raw = true;
    table.items.push_back(std::move(item));
    return;
  }
  xdata_->Apply(shape_, *obj);
  ObjectRecord record;
  record.span = span;
  record.read = true;
  record.line = shape_.Line();
  record.handle = shape_.handle;
  record.owner = shape_.owner;
  obj->File().Set(record);
  item.handle = obj->HandleValue();
  table.items.push_back(std::move(item));
}

// ----------------------------------------------------------------- blocks

void Reader::ReadBlocks(SectionImage& section) {
  while (!(tag_.code == 0 && tag_.value == "ENDSEC")) {
    if (tag_.code != 0 || tag_.value != "BLOCK")
      Unexpected("0 BLOCK or 0 ENDSEC in the BLOCKS section");
    size_t begin = tag_.offset;
    uint32_t line = tag_.line;
    ReadShape();
    Span begin_span{begin, shape_.end_offset};
    uint64_t begin_handle = shape_.handle;
    std::string name;
    host::Point3 origin;
    int64_t flags = 0;
    for (size_t i = shape_.head_end; i < shape_.xdata_begin; ++i) {
      const Tag& t = shape_.tags[i];
      if (t.code == 2 && name.empty())
        name = img_.codec.Decode(t.value);
      else if (t.code == 10)
        origin.x = RealValue(t);
      else if (t.code == 20)
        origin.y = RealValue(t);
      else if (t.code == 30)
        origin.z = RealValue(t);
      else if (t.code == 70)
        flags = IntValue(t);
    }
    if (name.empty())
      throw DxfError(line, "the BLOCK has no name (group code 2)");
    MemBlock* block = nullptr;
    if (shape_.owner != 0)
      block = dynamic_cast<MemBlock*>(doc_.FindByHandle(shape_.owner));
    if (block == nullptr) block = doc_.FindBlock(name);
    // R12 names the layouts' blocks $MODEL_SPACE and $PAPER_SPACE.
    if (block == nullptr && StartsWithNoCase(name, "$MODEL_SPACE"))
      block = &doc_.ModelSpaceBlock();
    if (block == nullptr && StartsWithNoCase(name, "$PAPER_SPACE"))
      block = &doc_.PaperSpaceBlock();
    if (block == nullptr) block = &doc_.AddBlock(name, origin);
    ObjectRecord* record = RecordOf(*block);
    if (record == nullptr) {
      block->File().Set(ObjectRecord{});
      record = RecordOf(*block);
    }
    if (!record->begin_span.Empty())
      throw DxfError(line, "the block " + Quoted(name) + " is defined twice");
    // Before R13 a block has no record of its own: it takes the handle of
    // its BLOCK entity.
    if (VersionNumber(img_.version) < kVersionR13 && !FromFile(*block)) {
      Claim(*block, begin_handle, line);
      // Taken for good: an entity that reuses it is a duplicate, not a
      // reason to move the block aside.
      if (begin_handle != 0) raw_lines_.emplace(begin_handle, line);
    } else
      ReserveRaw(begin_handle, line);
    block->origin_ = origin;
    block->is_xref_ = (flags & 4) != 0;
    if (StartsWithNoCase(name, "*Paper_Space") ||
        StartsWithNoCase(name, "*Model_Space"))
      block->is_layout_ = true;
    section.blocks.push_back(block->HandleValue());
    ReadEntities(block, "ENDBLK");
    if (tag_.code != 0 || tag_.value != "ENDBLK")
      Unexpected(("0 ENDBLK to close the block " + Quoted(name) +
                  " (started at line " + std::to_string(line) + ")")
                     .c_str());
    size_t end_begin = tag_.offset;
    ReadShape();
    ReserveRaw(shape_.handle, shape_.Line());
    record = RecordOf(*block);
    record->begin_span = begin_span;
    record->begin_handle = begin_handle;
    record->end_span = {end_begin, shape_.end_offset};
    record->end_handle = shape_.handle;
  }
}

void Reader::ReadEntitiesSection() { ReadEntities(nullptr, ""); }

void Reader::ReadEntities(MemBlock* owner, std::string_view stop) {
  while (true) {
    if (tag_.code != 0) Unexpected("0 and an entity type");
    if (tag_.value == "ENDSEC" || (!stop.empty() && tag_.value == stop)) return;
    if (tag_.value == "SECTION" || tag_.value == "EOF" ||
        tag_.value == "BLOCK" || tag_.value == "ENDBLK")
      Unexpected(stop.empty() ? "0 ENDSEC to close the ENTITIES section"
                              : "0 ENDBLK to close the block");
    ReadEntity(owner);
  }
}

void Reader::ReadEntity(MemBlock* owner) {
  size_t begin = tag_.offset;
  std::string type(tag_.value);
  ReadShape();
  bool orphan = type == "ATTRIB" || type == "SEQEND" || type == "VERTEX";
  bool paper = false;
  std::unique_ptr<MemEntity> entity =
      ReadEntityOfShape(shape_, ctx_, paper, orphan);
  MemBlock* block = owner;
  if (block == nullptr && shape_.owner != 0) {
    // Entities come in runs of the same owner.
    if (last_owner_ == nullptr || last_owner_->HandleValue() != shape_.owner)
      last_owner_ = dynamic_cast<MemBlock*>(doc_.FindByHandle(shape_.owner));
    block = last_owner_;
  }
  if (block == nullptr)
    block = paper ? &doc_.PaperSpaceBlock() : &doc_.ModelSpaceBlock();
  uint64_t handle = shape_.handle;
  uint32_t line = shape_.Line();
  if (handle != 0) ClaimHandle(handle, line);
  MemEntity& e = block->AddNew(std::move(entity), handle);
  if (handle == 0) unhandled_.push_back(&e);
  xdata_->Apply(shape_, e);
  ObjectRecord record;
  record.span = {begin, shape_.end_offset};
  record.read = true;
  record.line = line;
  // Without a handle in the file it is written with its new one.
  record.handle = handle;
  record.owner = shape_.owner;
  e.File().Set(record);

  auto* insert = e.AsBlockReference();
  auto reserve_shape_handle = [&]() {
    ReserveRaw(shape_.handle, shape_.Line());
  };
  if (insert != nullptr) {
    // Attributes join their reference; the SEQEND is kept with it.
    while (tag_.code == 0 && tag_.value == "ATTRIB") {
      size_t attr_begin = tag_.offset;
      ReadShape();
      bool ignored = false;
      std::unique_ptr<MemEntity> a =
          ReadEntityOfShape(shape_, ctx_, ignored, false);
      std::unique_ptr<memhost::MemAttributeReference> attr(
          static_cast<memhost::MemAttributeReference*>(a.release()));
      if (shape_.handle != 0) ClaimHandle(shape_.handle, shape_.Line());
      auto& adopted = insert->AdoptAttribute(std::move(attr), shape_.handle);
      if (shape_.handle == 0) unhandled_.push_back(&adopted);
      xdata_->Apply(shape_, adopted);
      ObjectRecord attr_record;
      attr_record.span = {attr_begin, shape_.end_offset};
      attr_record.read = true;
      attr_record.line = shape_.Line();
      attr_record.handle = shape_.handle;
      attr_record.owner = shape_.owner;
      adopted.File().Set(attr_record);
    }
    if (tag_.code == 0 && tag_.value == "SEQEND") {
      size_t seq_begin = tag_.offset;
      ReadShape();
      reserve_shape_handle();
      RecordOf(e)->end_span = {seq_begin, shape_.end_offset};
      RecordOf(e)->end_handle = shape_.handle;
    }
  } else if (type == "POLYLINE") {
    // Vertices and the SEQEND stay with the polyline, as read.
    PolylineOutline outline(shape_);
    size_t follow_begin = tag_.offset;
    while (tag_.code == 0 &&
           (tag_.value == "VERTEX" || tag_.value == "SEQEND")) {
      bool seqend = tag_.value == "SEQEND";
      ReadShape();
      reserve_shape_handle();
      if (seqend) break;
      outline.AddVertex(shape_);
    }
    if (auto* other = dynamic_cast<memhost::MemOtherEntity*>(&e))
      outline.Finish(*other);
    if (follow_begin < tag_.offset)
      RecordOf(e)->end_span = {follow_begin, tag_.offset};
  }
}

// ------------------------------------------------------------------ finish

void Reader::Finish() {
  for (const char* needed : {"HEADER", "TABLES", "BLOCKS", "ENTITIES"}) {
    bool found = false;
    for (const auto& s : img_.sections) found = found || s.name == needed;
    if (!found)
      throw DxfError(eof_line_,
                     std::string("the file ends (0 EOF) without the ") +
                         needed + " section; it is not a complete DXF drawing");
  }
  // New handles follow every handle in use and the file's seed; objects
  // moved aside while loading do not count.
  uint64_t seed = std::max({file_seed_, max_handle_ + 1, initial_seed_});
  for (MemObject* obj : unhandled_)
    seed = std::max(seed, obj->HandleValue() + 1);
  for (MemObject* obj : doc_.LayerList())
    seed = std::max(seed, obj->HandleValue() + 1);
  for (MemObject* obj : doc_.TextStyleList())
    seed = std::max(seed, obj->HandleValue() + 1);
  // Block records came with R13; before, a block's own handle is written
  // nowhere.
  if (VersionNumber(img_.version) >= kVersionR13)
    for (MemObject* obj : doc_.BlockList())
      seed = std::max(seed, obj->HandleValue() + 1);
  doc_.SetHandleSeed(seed);

  for (auto& pending : ctx_.pending_sources) {
    auto& loop = pending.hatch->loops_[pending.loop];
    for (uint64_t h : pending.handles)
      if (MemObject* obj = doc_.FindByHandle(h))
        loop.sources.push_back(obj->Id());
  }

  {
    memhost::MemDocument::LoadScope scope(doc_);
    if (memhost::MemLayer* l = doc_.FindLayer(img_.clayer); l && !l->frozen_)
      doc_.SetActiveLayer(*l);
    if (memhost::MemTextStyle* s = doc_.FindTextStyle(img_.textstyle))
      doc_.SetActiveTextStyle(*s);
    doc_.SetVariable("UCSXDIR", img_.ucsxdir);
    doc_.SetVariable("UCSYDIR", img_.ucsydir);
  }
  img_.clayer = doc_.ActiveLayer().Name();
  img_.textstyle = doc_.ActiveTextStyle().Name();

  // Fingerprints of the state as read.
  auto as_read = [](MemObject& obj, uint64_t hash) {
    if (ObjectRecord* r = RecordOf(obj)) {
      r->hash = hash;
      r->xdata_version = obj.XDataVersion();
    }
  };
  for (MemBlock* block : doc_.BlockList()) {
    as_read(*block, BlockHash(*block));
    for (MemEntity* e : block->MemEntities()) {
      as_read(*e, EntityHash(*e));
      if (e->AsHostEntity().Kind() == host::EntityKind::kBlockReference)
        for (auto* a :
             static_cast<memhost::MemBlockReference*>(e)->Attributes())
          as_read(*a, EntityHash(*a));
    }
  }
  for (auto* l : doc_.LayerList()) as_read(*l, LayerHash(*l));
  for (auto* s : doc_.TextStyleList()) as_read(*s, StyleHash(*s));
}

}  // namespace

void ReadDxf(MemDocument& doc, std::string text) {
  auto image = std::make_shared<FileImage>();
  if (IsBinaryDxf(text)) {
    BinaryForm form;
    image->buffer = BinaryToText(text, form);
    image->binary = std::move(form);
  } else {
    image->buffer = std::move(text);
  }
  {
    MemDocument::LoadScope scope(doc);
    Reader reader(doc, image);
    reader.Run();
  }
  doc.File().Set(image);
}

}  // namespace kestrana::dxf
