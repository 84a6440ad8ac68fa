#include "core/record.h"

#include <gtest/gtest.h>

#include "core/lists.h"
#include "core/pipe_record.h"
#include "memhost/document.h"

namespace kestrana::core {
namespace {

TEST(Record, NewRecordsHoldEmptyValuesOfEachKind) {
  Record record = Record::WithCodes(kPipeRecordCodes);
  ASSERT_EQ(record.Size(), kPipeRecordLength);
  EXPECT_EQ(record.Text(PipeField::kApplicationName), "Kestrana");
  EXPECT_TRUE(record.Value(PipeField::kCombinedLabel).IsText());
  EXPECT_TRUE(record.Value(PipeField::kSpan).IsReal());
  EXPECT_TRUE(record.Value(PipeField::kNumCells).IsInt());
  EXPECT_EQ(record.Number(PipeField::kStartInvert), 0);
}

TEST(Record, SettersKeepTheGroupCode) {
  Record record = Record::WithCodes(kPipeRecordCodes);
  record.SetText(PipeField::kSpan, "250 mm");  // real field
  EXPECT_EQ(record.Value(PipeField::kSpan), host::XValue(250.0));
  record.SetReal(PipeField::kMaterial, 12.5);  // text field
  EXPECT_EQ(record.Value(PipeField::kMaterial), host::XValue("12.5"));
  record.SetReal(PipeField::kNumCells, 2.5);  // 16-bit field, half to even
  EXPECT_EQ(record.Value(PipeField::kNumCells), host::XValue(int16_t{2}));
  record.SetInt16(PipeField::kRise, 8);
  EXPECT_EQ(record.Value(PipeField::kRise), host::XValue(8.0));
  for (int i = 0; i < record.Size(); ++i)
    EXPECT_EQ(record.Code(core::Field::At(i)),
              i == 0 ? 1001 : kPipeRecordCodes[i - 1]);
  record.Set(PipeField::kSpan, 1000, host::XValue("x"));
  EXPECT_EQ(record.Code(PipeField::kSpan), 1000);
}

TEST(Record, ReadsNumbersFromAnyKind) {
  Record record(host::XRecord{{1001, host::XValue("Kestrana")},
                              {1000, host::XValue("12.75abc")},
                              {1040, host::XValue(200.0)},
                              {1070, host::XValue(int16_t{3})},
                              {1000, host::XValue("PVC")}});
  EXPECT_EQ(record.Number(core::Field::At(1)), 12.75);
  EXPECT_EQ(record.Text(core::Field::At(2)), "200");
  EXPECT_EQ(record.Text(core::Field::At(3)), "3");
  EXPECT_EQ(record.Number(core::Field::At(4)), 0);
  EXPECT_EQ(record.Int16(core::Field::At(1)), 13);
  EXPECT_THROW(record.Text(core::Field::At(5)), std::out_of_range);
  EXPECT_THROW(record.SetText(core::Field::At(-1), "x"), std::out_of_range);
  EXPECT_THROW(Record(host::XRecord{}), std::invalid_argument);
  EXPECT_THROW(Record(host::XRecord{{1000, host::XValue("Kestrana")}}),
               std::invalid_argument);
}

TEST(Record, ReadAndWriteThroughTheHost) {
  memhost::MemDocument doc;
  host::LwPolyline& pipe =
      doc.ModelSpace().AddLightWeightPolyline({0, 0, 10, 0});
  EXPECT_FALSE(Record::Read(pipe));
  EXPECT_THROW(Record::ReadRequired(pipe), MissingRecordError);
  // Records of other applications are not ours.
  pipe.SetXData({{1001, host::XValue("OTHER")}, {1000, host::XValue("x")}});
  EXPECT_FALSE(Record::Read(pipe));

  Record record = Record::WithCodes(kPipeRecordCodes);
  record.SetText(PipeField::kCombinedLabel, "Pipe;Sewer A;P-1");
  record.Write(pipe);
  Record back = Record::ReadRequired(pipe);
  EXPECT_EQ(back.Items(), record.Items());
  EXPECT_EQ(pipe.GetXData("OTHER")->size(), 2u);
}

TEST(Lists, ReferenceAndObjectIdForms) {
  using V = std::vector<std::string>;
  EXPECT_EQ(ReferenceEntry("N-3"), ";RelatedToN-3");
  EXPECT_EQ(ReferenceValues(";RelatedToN-3;RelatedTo2130567312"),
            (V{"N-3", "2130567312"}));
  EXPECT_EQ(ReferenceValues(""), V{});
  EXPECT_EQ(ReferenceValues(";RelatedTo;Related"), (V{"", ""}));
  EXPECT_EQ(ListEntries("17;42;"), (V{"17", "42"}));
  EXPECT_EQ(ListEntries(""), V{});
  EXPECT_EQ(IdListEntry(2130567256), "2130567256;");
  EXPECT_EQ(IdText(-5), "-5");
}

TEST(Lists, ObjectIdsAreWholeNumbers) {
  EXPECT_EQ(ParseObjectId("2130567256"), 2130567256);
  EXPECT_EQ(ParseObjectId(" 42 "), 42);
  EXPECT_EQ(ParseObjectId("-7"), -7);
  for (const char* bad : {"", "abc", "12abc", "12.5", "2147483648", ";"})
    EXPECT_FALSE(ParseObjectId(bad)) << bad;
}

}  // namespace
}  // namespace kestrana::core
