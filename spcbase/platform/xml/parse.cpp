#include "spcbase/platform/xml/parse.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <vector>

#include "spcbase/platform/text/unicode.h"
#include "spcbase/platform/xml/characters.h"

namespace xml_model {

namespace {

struct free_parser {
  void operator()(xmlParserCtxt* parser) const noexcept { xmlFreeParserCtxt(parser); }
};
using parser_holder = std::unique_ptr<xmlParserCtxt, free_parser>;

std::string_view text_of(const xmlChar* text) {
  return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(text));
}

std::string_view text_of(const xmlChar* begin, const xmlChar* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

/// Makes nodes of what the parser tells. The parser is C: nothing may be thrown through it.
class builder {
 public:
  builder(xmlParserCtxt& parser, dom_node& document) noexcept
      : parser_(parser), home_(*document.home), document_(document), current_(&document) {}

  /// The parser reports to here from now on, errors too, so that no handler of the process is asked or changed.
  void attach();

  const parse_failure& failure() const noexcept { return failure_; }
  bool is_out_of_memory() const noexcept { return is_out_of_memory_; }

 private:
  static builder& self(void* context) { return *static_cast<builder*>(context); }

  static void on_start(void* context, const xmlChar* local_name, const xmlChar* prefix, const xmlChar* uri,
                       int declaration_count, const xmlChar** declarations, int attribute_count, int defaulted_count,
                       const xmlChar** attributes);
  static void on_end(void* context, const xmlChar* local_name, const xmlChar* prefix, const xmlChar* uri);
  static void on_text(void* context, const xmlChar* text, int length);
  static void on_section(void* context, const xmlChar* text, int length);
  static void on_comment(void* context, const xmlChar* text);
  static void on_instruction(void* context, const xmlChar* target, const xmlChar* data);
  static void on_document_type(void* context, const xmlChar* name, const xmlChar* external_id,
                               const xmlChar* system_id);
  static void on_error(void* context, xmlError* error);

  template <class Step>
  void carefully(Step step) noexcept {
    try {
      step();
    } catch (const std::bad_alloc&) {
      give_up();
    }
  }
  void give_up() noexcept {
    is_out_of_memory_ = true;
    xmlStopParser(&parser_);
  }
  std::string_view qualified(const xmlChar* prefix, const xmlChar* local_name);
  void add(DOMNodeType type, std::string_view name, std::string_view value);
  attribute** add_declarations(attribute** end, int count, const xmlChar** declarations);
  void add_attributes(attribute** end, int count, const xmlChar** attributes);
  void open(const xmlChar* local_name, const xmlChar* prefix);
  void take_text(std::string_view text);
  void finish_text();

  xmlParserCtxt& parser_;
  store& home_;
  dom_node& document_;
  dom_node* current_;
  /// The text since the last tag, in the pieces that the parser gives, and whether a part of it was written as a
  /// reference: such white space is meant.
  std::string text_;
  bool has_reference_ = false;
  /// What xml:space says, for the document and each open element.
  std::vector<bool> keeps_blanks_ = {false};
  parse_failure failure_;
  bool is_out_of_memory_ = false;
};

void builder::attach() {
  xmlSAXHandler& calls = *parser_.sax;
  calls = {};
  calls.initialized = XML_SAX2_MAGIC;
  calls.startElementNs = &builder::on_start;
  calls.endElementNs = &builder::on_end;
  calls.characters = &builder::on_text;
  // The same function: the parser must not judge by itself which white space matters.
  calls.ignorableWhitespace = &builder::on_text;
  calls.cdataBlock = &builder::on_section;
  calls.comment = &builder::on_comment;
  calls.processingInstruction = &builder::on_instruction;
  calls.internalSubset = &builder::on_document_type;
  calls.serror = &builder::on_error;
  parser_.userData = this;
}

std::string_view builder::qualified(const xmlChar* prefix, const xmlChar* local_name) {
  // Names are in the store's own table already, but not those with a prefix as one text.
  if (prefix == nullptr) return text_of(local_name);
  const xmlChar* const name = xmlDictQLookup(home_.names(), prefix, local_name);
  if (name == nullptr) throw std::bad_alloc();
  return text_of(name);
}

void builder::add(DOMNodeType type, std::string_view name, std::string_view value) {
  current_->link(*home_.make<dom_node>(home_, type, name, home_.keep(value)));
}

attribute** builder::add_declarations(attribute** end, int count, const xmlChar** declarations) {
  for (int i = 0; i < count; ++i, declarations += 2) {
    std::string name = "xmlns";
    if (declarations[0] != nullptr) name.append(":").append(text_of(declarations[0]));
    *end = home_.make<attribute>(attribute{home_.name(name), home_.keep(text_of(declarations[1])), nullptr});
    end = &(*end)->next;
  }
  return end;
}

void builder::add_attributes(attribute** end, int count, const xmlChar** attributes) {
  // Five texts for each: local name, prefix, namespace, begin and end of the value.
  for (int i = 0; i < count; ++i, attributes += 5) {
    const std::string_view name = qualified(attributes[1], attributes[0]);
    const std::string_view value = home_.keep(text_of(attributes[3], attributes[4]));
    *end = home_.make<attribute>(attribute{name, value, nullptr});
    end = &(*end)->next;
  }
}

void builder::open(const xmlChar* local_name, const xmlChar* prefix) {
  finish_text();
  add(NODE_ELEMENT, qualified(prefix, local_name), {});
  current_ = current_->last_child;
  keeps_blanks_.push_back(keeps_blanks_.back());
}

void builder::on_start(void* context, const xmlChar* local_name, const xmlChar* prefix, const xmlChar*,
                       int declaration_count, const xmlChar** declarations, int attribute_count, int,
                       const xmlChar** attributes) {
  builder& me = self(context);
  me.carefully([&] {
    me.open(local_name, prefix);
    attribute** const end = me.add_declarations(&me.current_->attributes, declaration_count, declarations);
    me.add_attributes(end, attribute_count, attributes);
    if (attribute_count == 0) return;
    if (const attribute* const space = me.current_->find_attribute("xml:space"))
      me.keeps_blanks_.back() = space->value == "preserve";
  });
}

void builder::on_end(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.current_ = me.current_->parent;
    me.keeps_blanks_.pop_back();
  });
}

void builder::on_text(void* context, const xmlChar* text, int length) {
  builder& me = self(context);
  me.carefully([&] { me.take_text(text_of(text, text + length)); });
}

void builder::take_text(std::string_view text) {
  // When the parser has just read a reference, its place is right behind the semicolon. Behind white space it is not,
  // or a reference came before and was seen.
  const xmlParserInput* const input = parser_.input;
  if (text.size() == 1 && is_blank(text[0]) && input->cur > input->base && input->cur[-1] == ';') has_reference_ = true;
  text_.append(text);
}

void builder::finish_text() {
  if (text_.empty()) return;
  const bool is_kept = !is_blank(text_) || has_reference_ || keeps_blanks_.back();
  if (is_kept && current_ != &document_) add(NODE_TEXT, "#text", text_);
  text_.clear();
  has_reference_ = false;
}

void builder::on_section(void* context, const xmlChar* text, int length) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.add(NODE_CDATA_SECTION, "#cdata-section", text_of(text, text + length));
  });
}

void builder::on_comment(void* context, const xmlChar* text) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.add(NODE_COMMENT, "#comment", text_of(text));
  });
}

void builder::on_instruction(void* context, const xmlChar* target, const xmlChar* data) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.add(NODE_PROCESSING_INSTRUCTION, me.home_.name(text_of(target)), text_of(data));
  });
}

void builder::on_document_type(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  builder& me = self(context);
  me.carefully([&] {
    if (me.failure_.code == 0) {
      me.failure_ = {XML_E_INVALIDATROOTLEVEL, "A document type declaration is not allowed", me.parser_.input->line,
                     me.parser_.input->col};
    }
  });
  xmlStopParser(&me.parser_);
}

void builder::on_error(void* context, xmlError* error) {
  builder& me = self(context);
  // The first error is the cause, and a warning none. What is wrong with a namespace does not stop the parser.
  if (error->level < XML_ERR_ERROR || me.failure_.code != 0) return;
  if (error->code == XML_ERR_NO_MEMORY) return me.give_up();
  me.carefully([&] {
    std::string_view reason = error->message == nullptr ? std::string_view() : std::string_view(error->message);
    while (!reason.empty() && is_blank(reason.back()))
      reason.remove_suffix(1);
    me.failure_ = {error->code, std::string(reason), error->line, error->int2};
  });
}

// A parser for a text. Its names go into the store's table, where the nodes find them.
parser_holder make_parser(std::string_view text, store& home) {
  [[maybe_unused]] static const bool is_ready = (xmlInitParser(), true);
  // An empty text is no text for this call; a zero is, and the parser finds it empty.
  if (text.empty()) text = {"", 1};
  parser_holder parser(xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
  if (!parser) throw std::bad_alloc();
  xmlDictFree(parser->dict);
  parser->dict = home.names();
  xmlDictReference(parser->dict);
  // References are to come as what they stand for. Without document types only those of XML itself exist, so nothing
  // can grow by it, and the limits that guard against such growth may go: a large text is no attack.
  xmlCtxtUseOptions(parser.get(), XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC);
  return parser;
}

bool has_declaration(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  return text.size() > 5 && text.starts_with("<?xml") && is_blank(text[5]);
}

parse_failure too_long(std::size_t limit_bytes) {
  return {XML_ERR_INTERNAL_ERROR, "The text is longer than " + std::to_string(limit_bytes) + " bytes", 1, 1};
}

// The parser takes a zero for the end, and half of a pair has no UTF-8: both are told in its words for a character that
// XML does not have.
parse_failure unwritable(std::u16string_view text, std::size_t at) {
  char reason[40];
  std::snprintf(reason, sizeof reason, "invalid Char value 0x%X", static_cast<unsigned>(text[at]));
  const std::u16string_view before = text.substr(0, at);
  const auto line = static_cast<LONG>(std::count(before.begin(), before.end(), u'\n')) + 1;
  const std::size_t line_begin = before.rfind(u'\n') + 1;
  return {XML_ERR_INVALID_CHAR, reason, line, static_cast<LONG>(at - line_begin) + 1};
}

// Parses well-formed UTF-8 without zeros.
parsed parse_clean(std::string_view text, dom_node& document, std::size_t limit_bytes) {
  if (text.size() > limit_bytes) return {too_long(limit_bytes), {}};
  const parser_holder parser = make_parser(text, *document.home);
  builder nodes(*parser, document);
  nodes.attach();
  xmlParseDocument(parser.get());
  if (nodes.is_out_of_memory()) throw std::bad_alloc();
  parsed result;
  result.failure = nodes.failure();
  if (has_declaration(text)) result.head = {true, parser->standalone};
  return result;
}

}  // namespace

parsed parse(std::u16string_view text, dom_node& document, std::size_t limit_bytes) {
  // No character has fewer bytes than units, so what is too long here is there.
  if (text.size() > limit_bytes) return {too_long(limit_bytes), {}};
  const std::size_t bad = find_unwritable(text);
  if (bad != std::u16string_view::npos) return {unwritable(text, bad), {}};
  return parse_clean(to_narrow(text), document, limit_bytes);
}

parsed parse(std::string_view text, dom_node& document, std::size_t limit_bytes) {
  if (text.size() > limit_bytes) return {too_long(limit_bytes), {}};
  const bool is_clean = text.find('\0') == std::string_view::npos && platform::is_valid_utf8(text);
  if (is_clean) return parse_clean(text, document, limit_bytes);
  return parse(std::u16string_view(platform::to_utf16(text)), document, limit_bytes);
}

}  // namespace xml_model
