// The records of a valid project drawing damaged by the input: fields cut,
// set to other texts, numbers turned into text, reference lists written in
// the other list form, IDs swapped for others. The audit and `check` must
// answer with findings and never fail; a few commands run on the damage
// may refuse or fail, but only by throwing.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "check/audit.h"
#include "commands/check.h"
#include "commands/convert.h"
#include "commands/crossings.h"
#include "commands/element_data.h"
#include "commands/networks.h"
#include "commands/pipes.h"
#include "commands/project.h"
#include "core/names.h"
#include "core/text.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "host/host.h"
#include "memhost/document.h"

namespace {

using kestrana::host::XItem;
using kestrana::host::XRecord;
using kestrana::host::XValue;

// Two crossing networks with levels, crossings and low and high points.
std::string ValidDrawing() {
  using namespace kestrana;
  memhost::MemDocument doc;
  commands::NewProject(doc, {core::kMetric});
  commands::AddNetwork(doc, {"Sewer", core::kGravity});
  commands::AddNetwork(doc, {"Water", core::kPressure});
  auto draw = [&](const std::string& layer, std::vector<double> xy) {
    if (!doc.GetLayers().Find(layer)) doc.GetLayers().Add(layer);
    doc.ModelSpace().AddLightWeightPolyline(xy).SetLayer(layer);
  };
  draw("s", {0, 0, 50, 0});
  draw("s", {50, 0, 100, 0});
  draw("w", {25, -20, 25, 20});
  draw("w", {25, 20, 75, 20, 75, -20});
  commands::Convert(doc, {.network = "Sewer", .selection = {.layer = "s"}});
  commands::Convert(doc, {.network = "Water", .selection = {.layer = "w"}});
  commands::SetNode(doc, {.network = "Water", .label = "N-2", .sump = 99});
  commands::SetPipe(doc, {.network = "Sewer", .label = "P-1",
                          .start_invert = 98, .end_invert = 97.5});
  return dxf::WriteDxf(doc);
}

class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool Left(size_t n) const { return at_ + n <= size_; }
  uint8_t Next() { return at_ < size_ ? data_[at_++] : 0; }
  std::string Text(size_t n) {
    std::string text;
    while (n-- && at_ < size_) text += static_cast<char>(data_[at_++]);
    return text;
  }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t at_ = 0;
};

// A reference list written in the trailing form, or the other way round.
std::string OtherListForm(const std::string& text) {
  std::vector<std::string> pieces = kestrana::core::Split(text);
  std::string out;
  if (!text.empty() && text[0] == ';') {
    for (size_t i = 1; i < pieces.size(); ++i) out += pieces[i] + ";";
  } else {
    for (const std::string& p : pieces)
      if (!p.empty()) out += ";RelatedTo" + p;
  }
  return out;
}

void Damage(kestrana::memhost::MemDocument& doc, Bytes& bytes) {
  std::vector<kestrana::host::Object*> objects = {&doc.ModelSpace()};
  std::vector<std::string> ids;
  for (kestrana::host::Entity* e : doc.ModelSpace().Entities())
    if (e->GetXData(kestrana::core::kAppName)) {
      objects.push_back(e);
      ids.push_back(std::to_string(e->ObjectID()));
    }
  while (bytes.Left(3)) {
    const int op = bytes.Next() % 6;
    kestrana::host::Object& object = *objects[bytes.Next() % objects.size()];
    XRecord record = *object.GetXData(kestrana::core::kAppName);
    const size_t field = 1 + bytes.Next() % (record.size() + 1);
    if (field >= record.size() && op != 0) continue;
    XItem& item = record[std::min(field, record.size() - 1)];
    switch (op) {
      case 0:  // cut short (the application name stays)
        record.resize(std::max<size_t>(1, std::min(field, record.size())));
        break;
      case 1:  // any text
        item = {1000, XValue(bytes.Text(bytes.Next() % 24))};
        break;
      case 2: {  // a number where text was, or text where a number was
        static const char* kTexts[] = {"abc", "", "1e999", "-", "0042", " 7 "};
        if (item.code == 1000)
          item = {1040, XValue(static_cast<double>(bytes.Next()) - 100.5)};
        else
          item = {1000, XValue(std::string(kTexts[bytes.Next() % 6]))};
        break;
      }
      case 3:  // the other list form
        if (item.code == 1000)
          item.value = XValue(OtherListForm(kestrana::core::TextOf(item.value)));
        break;
      case 4: {  // another object's ID, or one of none
        std::string id = bytes.Next() % 4 == 0 || ids.empty()
                             ? std::to_string(bytes.Next() * 7919)
                             : ids[bytes.Next() % ids.size()];
        item = {1000, XValue(";RelatedTo" + id)};
        break;
      }
      case 5:  // a field repeated at the end
        record.push_back(item);
        break;
    }
    object.SetXData(record);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kestrana;
  static const std::string valid = ValidDrawing();
  memhost::MemDocument doc;
  dxf::ReadDxf(doc, valid);
  Bytes bytes(data, size);
  Damage(doc, bytes);

  // The audit answers every damage with findings.
  try {
    check::Audit(doc, {.design = true});
    commands::Check(doc, {.design = true});
  } catch (const std::exception& e) {
    std::fprintf(stderr, "the audit failed: %s\n", e.what());
    std::abort();
  }
  // Commands may refuse the damage, by throwing only.
  auto attempt = [](auto command) {
    try {
      command();
    } catch (const std::exception&) {
    }
  };
  attempt([&] { commands::Check(doc, {.fix = true}); });
  attempt([&] { commands::ListCrossings(doc); });
  attempt([&] { commands::SetNode(doc, {.network = "Water", .label = "N-2",
                                        .sump = 98.5}); });
  attempt([&] { commands::SetPipe(doc, {.network = "Sewer", .label = "P-2",
                                        .size = "300"}); });
  attempt([&] { commands::SplitPipe(doc, {"Water", "P-2", 50, 20}); });
  attempt([&] { commands::RenewIds(doc); });
  attempt([&] { check::Audit(doc); });
  return 0;
}
