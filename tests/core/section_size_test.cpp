// Sizes as numbers, and the size texts of annotations and crossing records
// read back into them.
#include "core/section_size.h"

#include <gtest/gtest.h>

#include "core/general.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"

namespace kestrana::core {
namespace {

TEST(SectionSize, ReadsBackEverySizeTextAPipeRecordMakes) {
  for (bool box : {false, true})
    for (int cells : {1, 2, 3})
      for (double span : {100.0, 150.5, 1200.0}) {
        Record pipe = Record::WithCodes(kPipeRecordCodes);
        pipe.SetText(PipeField::kSectionShape,
                     box ? kSectionShapeBox : kSectionShapeCircular);
        pipe.SetReal(PipeField::kSpan, span);
        pipe.SetReal(PipeField::kRise, box ? span / 2 : span);
        pipe.SetInt16(PipeField::kNumCells, static_cast<int16_t>(cells));
        const std::string text = General::BuildSectionSizeString(pipe);
        SCOPED_TRACE(text);
        const std::optional<SectionSize> parsed = SectionSize::Parse(text);
        ASSERT_TRUE(parsed.has_value());
        EXPECT_EQ(*parsed, SectionSize::Of(pipe));
      }
}

TEST(SectionSize, TextsOfNoSizeAreNone) {
  for (const char* text :
       {"", "%%c", "300", "X800", "1200X", "%%c-300", "0 %%c300", "2 300",
        "1.5 %%c300", "2 (1200X800", "abcXdef"})
    EXPECT_FALSE(SectionSize::Parse(text).has_value()) << text;
  EXPECT_EQ(SectionSize::Parse("1200x800"), (SectionSize{true, 1200, 800, 1}));
}

}  // namespace
}  // namespace kestrana::core
