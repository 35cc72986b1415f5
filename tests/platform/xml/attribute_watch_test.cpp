// Plan
//   AttributeWatch: counts the values of one start tag, whatever stands in them and wherever a piece ends; counts
//   nothing that stands elsewhere
#include "spcbase/platform/xml/attribute_watch.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using xml_model::attribute_watch;

/// Whether the text stays within two attributes, in pieces of each size.
bool passes_in_any_pieces(std::string_view text) {
  std::size_t passed = 0;
  for (std::size_t size = 1; size <= text.size(); ++size) {
    attribute_watch watch(2);
    bool good = true;
    for (std::size_t at = 0; at < text.size(); at += size)
      good = watch.take(text.substr(at, size));
    EXPECT_EQ(good, !watch.has_too_many());
    passed += good ? 1 : 0;
  }
  EXPECT_TRUE(passed == 0 || passed == text.size()) << text;
  return passed != 0;
}

TEST(AttributeWatch, counts_the_attributes_of_one_element) {
  EXPECT_TRUE(passes_in_any_pieces("<a b='1' c=\"2\"/>"));
  EXPECT_FALSE(passes_in_any_pieces("<a b='1' c=\"2\" d=''/>"));
  EXPECT_TRUE(passes_in_any_pieces("<a b='1' c=''><d e='' f=''/></a><g h=''></g>"));
  EXPECT_FALSE(passes_in_any_pieces("<a b='1' c=''><d e='' f='' g=''/></a>"));
}

TEST(AttributeWatch, is_not_led_astray_by_values) {
  EXPECT_TRUE(passes_in_any_pieces("<a b='\"\"\"\">' c=\"'''/>\"/>"));
  EXPECT_FALSE(passes_in_any_pieces("<a b='>' c='/>' d='<e>'/>"));
}

TEST(AttributeWatch, counts_nothing_but_attributes) {
  EXPECT_TRUE(passes_in_any_pieces("<a>'' '' '' \"\"</a '' '' ''><b/>"));
  EXPECT_TRUE(passes_in_any_pieces("<?xml a='' b='' c=''?><a/>"));
  EXPECT_TRUE(passes_in_any_pieces("<!-- <a b='' c='' d=''/> -> --> <a/>"));
  EXPECT_TRUE(passes_in_any_pieces("<![CDATA[<a b='' c='' d=''> ]> ]]><a/>"));
}

TEST(AttributeWatch, goes_on_behind_what_it_passed_over) {
  const std::string many = "<a b='' c='' d=''/>";
  for (const char* before : {"<!---->", "<!-- - -->", "<!--->-->", "<?x?>", "<?x ? > ?>", "<![CDATA[]]>",
                             "<![CDATA[]]]]>", "<b/>", "<b></b>", "text"})
    EXPECT_FALSE(passes_in_any_pieces(before + many)) << before;
  EXPECT_TRUE(passes_in_any_pieces("<!-->" + many + "-->"));
  EXPECT_TRUE(passes_in_any_pieces("<!--->" + many + "-->"));
}

}  // namespace
