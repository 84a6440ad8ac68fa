// What the file layer keeps of a drawing read from a file, so that writing
// it back loses nothing: the file's bytes, where each part of it lies, and
// a fingerprint of each object's state at load time. An object whose state
// still has its fingerprint is written back as the bytes it was read from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dxf/text_codec.h"
#include "memhost/document.h"

namespace kestrana::dxf {

// A byte range of FileImage::buffer.
struct Span {
  size_t begin = 0;
  size_t end = 0;
  bool Empty() const { return begin == end; }
};

// Kept in MemObject::File() of every object read from a file (and of
// blocks and inserts once their extra handles are given out).
struct ObjectRecord {
  Span span;          // the entity or table record as read
  uint64_t hash = 0;  // fingerprint of the state when read, XData aside
  // MemObject::XDataVersion() when read; kXDataRewrite writes the
  // extended data from the state whatever it says.
  uint32_t xdata_version = 0;
  static constexpr uint32_t kXDataRewrite = ~uint32_t{0};
  bool read = false;  // false: a new object, written from its state
  // Blocks: the BLOCK entity and the ENDBLK entity. Inserts with
  // attributes: the SEQEND (in end_*).
  Span begin_span, end_span;
  uint64_t begin_handle = 0, end_handle = 0;
  uint32_t line = 0;  // where the object starts, for messages
  // The handle the record was read for: a copy made by the logic carries
  // its original's record and is written from it under its own handle.
  uint64_t handle = 0;
  bool copied = false;
  uint64_t owner = 0;  // 330 as read (0: none)
};

struct HeaderVar {
  std::string name;  // "$HANDSEED"
  Span span;         // "9 $NAME" and its value tags
};

// One entry of a table: kept as read (raw), or a modelled object found by
// its handle (layers, text styles, block records; new application names).
struct TableItem {
  bool raw = false;
  Span span;
  uint64_t handle = 0;
  std::string name;
};

struct TableImage {
  std::string name;  // "LAYER"
  uint64_t handle = 0;
  Span head;                     // "0 TABLE" up to the first entry
  Span tail;                     // "0 ENDTAB"
  std::vector<TableItem> items;  // in file order, then new ones
  size_t count_read = 0;
};

struct SectionImage {
  enum class Kind { kRaw, kHeader, kTables, kBlocks, kEntities };
  Kind kind = Kind::kRaw;
  std::string name;
  Span span;                       // the whole section
  Span head;                       // "0 SECTION 2 NAME"
  Span tail;                       // "0 ENDSEC"
  std::vector<HeaderVar> vars;     // kHeader
  std::vector<TableImage> tables;  // kTables
  std::vector<uint64_t> blocks;    // kBlocks: block record handles in order
};

struct FileImage {
  std::string buffer;
  std::string version;  // $ACADVER
  std::string codepage;
  std::string eol = "\n";
  TextCodec codec;
  std::vector<SectionImage> sections;
  Span trailer;  // "0 EOF" and anything after it
  // Header values as read, to tell whether the drawing changed them.
  std::string clayer = "0";
  std::string textstyle = "Standard";
  host::Point3 ucsxdir{1, 0, 0}, ucsydir{0, 1, 0};

  std::string_view Bytes(const Span& s) const {
    return std::string_view(buffer).substr(s.begin, s.end - s.begin);
  }
};

// The image of a document, or nullptr when it was never read or written.
inline FileImage* ImageOf(memhost::MemDocument& doc) {
  auto* p = doc.File().Get<std::shared_ptr<FileImage>>();
  return p ? p->get() : nullptr;
}

inline ObjectRecord* RecordOf(memhost::MemObject& obj) {
  return obj.File().Get<ObjectRecord>();
}
inline const ObjectRecord* RecordOf(const memhost::MemObject& obj) {
  return obj.File().Get<ObjectRecord>();
}

}  // namespace kestrana::dxf
