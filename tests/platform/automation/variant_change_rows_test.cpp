// Plan: every recorded row of VariantChangeType, one value to one type, texts by text and doubles by their bits.
//   Rows whose last bits are doubtful are held to the nearest double of their text.
#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cstdlib>

#include "array_text.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/datetime/clock.h"

namespace {

using vectors::answer;

// A value from its type's name and its text.
void set_value(VARIANT& value, const std::string& type, const std::string& text) {
  VariantInit(&value);
  value.vt = vectors::type_of(type);
  if (type == "BSTR") {
    value.bstrVal = text == "(null)" ? nullptr : _bstr_t(text.c_str()).copy();
  } else if (type == "R8" || type == "DATE") {
    value.dblVal = std::strtod(text.c_str(), nullptr);
  } else if (type == "R4") {
    value.fltVal = std::strtof(text.c_str(), nullptr);
  } else if (type == "ERROR") {
    value.scode = static_cast<SCODE>(std::stoul(text, nullptr, 16));
  } else if (type == "UI8") {
    value.ullVal = std::stoull(text);
  } else if (!text.empty() && text != "(null)") {
    value.llVal = std::stoll(text);
  }
}

std::string double_text(double value) { return vectors::text("%.17g", value); }

std::string bits_text(double value) {
  return vectors::text("%016llX", static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)));
}

struct told {
  std::string result;
  std::string output;
  std::string bits;
};

told change(const VARIANT& source, const std::string& type) {
  scoped_variant target;
  const HRESULT result = VariantChangeType(target.get(), &source, 0, vectors::type_of(type));
  if (FAILED(result)) {
    EXPECT_EQ(target->vt, VT_EMPTY);
    return {vectors::hex(result), "", ""};
  }
  EXPECT_EQ(target->vt, vectors::type_of(type));
  if (type == "BSTR") {
    const _bstr_t text(target->bstrVal, true);
    return {vectors::hex(result), text.length() == 0 ? "" : static_cast<const char*>(text), ""};
  }
  if (type == "I4") return {vectors::hex(result), std::to_string(target->lVal), ""};
  return {vectors::hex(result), double_text(target->dblVal), bits_text(target->dblVal)};
}

TEST(VariantChangeTypeRows, every_row_that_can_be_relied_on_comes_out_as_recorded) {
  // The rows without a year were recorded in 2026.
  const platform::HeldClock clock(std::chrono::sys_days(std::chrono::year(2026) / 6 / 15) + std::chrono::hours(12));
  int relied_on = 0;
  for (const vectors::row& row : vectors::read("variant_change.tsv")) {
    const std::string& note = row[7];
    if (note == "suspect" || note == "suspect-two-digit-cutoff-2049") continue;
    ASSERT_TRUE(note.empty() || note == "suspect-last-bits" || note == "current-year-2026") << note;
    SCOPED_TRACE(vectors::text("line %d: ", row.line) + row[0] + " \"" + row[2] + '"');
    scoped_variant source;
    set_value(*source, row[1], row[2]);
    const told now = change(*source, row[3]);
    EXPECT_EQ(now.result, row[4]);
    if (note == "suspect-last-bits") {
      EXPECT_EQ(now.bits, bits_text(std::strtod(row[2].c_str(), nullptr)));
    } else {
      EXPECT_EQ(now.output, row[5]);
      EXPECT_EQ(now.bits, row[6]);
    }
    ++relied_on;
  }
  EXPECT_GT(relied_on, 500);
}

}  // namespace
