#include "dxf/upgrade.h"

#include "dxf/tags.h"

namespace kestrana::dxf {

using host::Point3;
using memhost::MemBlock;
using memhost::MemDocument;
using memhost::MemEntity;

namespace {

// The tags of a span of the file.
std::vector<Tag> TagsOf(const FileImage& img, const Span& span) {
  std::vector<Tag> tags;
  Tokenizer tok(img.Bytes(span));
  Tag t;
  while (tok.Next(t)) tags.push_back(t);
  return tags;
}

// The lightweight polyline a classic POLYLINE stands for, or nullptr when
// it is not a flat 2D one of straight and arc segments (3D polylines,
// meshes, curve- and spline-fitted ones, tilted planes stay as they are).
std::unique_ptr<memhost::MemLwPolyline> FlatPolyline(const FileImage& img,
                                                     const ObjectRecord& r) {
  if (r.end_span.Empty()) return nullptr;
  auto lw = std::make_unique<memhost::MemLwPolyline>();
  double start_width = 0, end_width = 0;
  Point3 normal{0, 0, 1};
  for (const Tag& t : TagsOf(img, r.span)) {
    switch (t.code) {
      case 70:
        // Only "closed" and the linetype-generation bit.
        if ((IntValue(t) & ~int64_t{1 | 128}) != 0) return nullptr;
        lw->closed_ = (IntValue(t) & 1) != 0;
        break;
      case 30:
        lw->elevation_ = RealValue(t);
        break;
      case 40:
        start_width = RealValue(t);
        break;
      case 41:
        end_width = RealValue(t);
        break;
      case 210:
        normal.x = RealValue(t);
        break;
      case 220:
        normal.y = RealValue(t);
        break;
      case 230:
        normal.z = RealValue(t);
        break;
      default:
        break;
    }
  }
  if (!(normal == Point3{0, 0, 1})) return nullptr;
  bool in_vertex = false;
  for (const Tag& t : TagsOf(img, r.end_span)) {
    if (t.code == 0) {
      in_vertex = t.value == "VERTEX";
      if (in_vertex) {
        lw->xy_.insert(lw->xy_.end(), {0.0, 0.0});
        lw->bulges_.push_back(0);
        lw->widths_.push_back({start_width, end_width});
      }
      continue;
    }
    if (!in_vertex) continue;
    switch (t.code) {
      case 70:
        if (IntValue(t) != 0) return nullptr;
        break;
      case 10:
        lw->xy_[lw->xy_.size() - 2] = RealValue(t);
        break;
      case 20:
        lw->xy_.back() = RealValue(t);
        break;
      case 40:
        lw->widths_.back().first = RealValue(t);
        break;
      case 41:
        lw->widths_.back().second = RealValue(t);
        break;
      case 42:
        lw->bulges_.back() = RealValue(t);
        break;
      default:
        break;
    }
  }
  if (lw->xy_.size() < 4) return nullptr;
  return lw;
}

int ConvertPolylines(MemDocument& doc, const FileImage& img) {
  int converted = 0;
  for (MemBlock* block : doc.BlockList()) {
    for (MemEntity* e : block->MemEntities()) {
      if (e->KindOf() != host::EntityKind::kOther ||
          e->AsHostEntity().EntityName() != "POLYLINE")
        continue;
      const ObjectRecord* r = RecordOf(*e);
      if (r == nullptr || !r->read) continue;
      std::unique_ptr<memhost::MemLwPolyline> lw = FlatPolyline(img, *r);
      if (lw == nullptr) continue;
      lw->SetLayerUnchecked(e->LayerName());
      lw->color_ = e->color_;
      lw->visible_ = e->visible_;
      std::vector<host::XRecord> xdata = e->XData();
      auto& added = block->AddNew(std::move(lw));
      added.SetAllXData(std::move(xdata));
      e->AsHostEntity().Delete();
      ++converted;
    }
  }
  return converted;
}

std::string Release(int version) {
  switch (version) {
    case kVersionR12:
      return "R12";
    case kVersionR13:
      return "R13";
    case kVersionR14:
      return "R14";
    default:
      return "before R2000";
  }
}

}  // namespace

void UpgradeToR2000(MemDocument& doc, FileImage& img) {
  int version = VersionNumber(img.version);
  std::string old_version = img.version;
  img.upgraded_from = img.version;
  img.version = "AC1015";
  img.handles = true;
  // Binary R2000 writes group codes in two bytes.
  if (img.binary) img.binary->one_byte_codes = false;
  int converted = 0;
  {
    MemDocument::LoadScope scope(doc);  // locked layers too
    converted = ConvertPolylines(doc, img);
  }
  // R2000 tables have handles.
  for (SectionImage& section : img.sections)
    for (TableImage& t : section.tables)
      if (t.handle == 0) {
        t.handle = doc.NextHandle();
        doc.ReserveHandle(t.handle);
        t.head_anew = true;
      }
  for (MemBlock* b : doc.BlockList()) {
    ObjectRecord* r = RecordOf(*b);
    if (r == nullptr) continue;
    // Block begin and end markers in R2000 form, tied to their records.
    r->begin_span = {};
    r->end_span = {};
    if (version < kVersionR13) {
      // The block took its BLOCK entity's handle; its record needs one of
      // its own.
      uint64_t begin = b->HandleValue();
      doc.Rehandle(*b, doc.NextHandle());
      doc.ReserveHandle(begin);
      r->hash = 0;
    }
  }
  std::string message = "the drawing was DXF " + Release(version) + " (" +
                        old_version +
                        "); it is saved as DXF R2000 (AC1015), the oldest "
                        "version that holds Kestrana's data";
  if (converted == 1)
    message += "; its flat classic polyline became a lightweight polyline";
  else if (converted > 1)
    message += "; its " + std::to_string(converted) +
               " flat classic polylines became lightweight polylines";
  memhost::LogEntry entry;
  entry.kind = memhost::LogEntry::Kind::kMessage;
  entry.text = message;
  entry.icon = host::msgbox::kInformation;
  entry.title = "Kestrana";
  doc.GetSession().Record(entry);
}

}  // namespace kestrana::dxf
