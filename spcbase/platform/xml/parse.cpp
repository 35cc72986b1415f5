#include "spcbase/platform/xml/parse.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <vector>

#include "spcbase/platform/text/unicode.h"
#include "spcbase/platform/xml/attribute_watch.h"
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
  builder(xmlParserCtxt& parser, dom_node& document)
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
  attribute** add_declarations(attribute** end, int count, const xmlChar** declarations);
  void add_attributes(attribute** end, int count, const xmlChar** attributes);
  void open(const xmlChar* local_name, const xmlChar* prefix);
  void check_names();
  void refuse(LONG code, std::string reason);
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
  current_ = current_->add_node(NODE_ELEMENT, qualified(prefix, local_name), {});
  keeps_blanks_.push_back(keeps_blanks_.back());
}

void builder::refuse(LONG code, std::string reason) {
  if (failure_.code == 0) failure_ = {code, std::move(reason), parser_.input->line, parser_.input->col};
  xmlStopParser(&parser_);
}

void builder::check_names() {
  // The parser looks for a declaration among all that are open, and for a name among those of like hash, in a table
  // that stops growing.
  if (static_cast<std::size_t>(parser_.nsNr) / 2 > most_declarations)
    refuse(XML_ERR_INTERNAL_ERROR,
           "More than " + std::to_string(most_declarations) + " namespaces are declared for an element");
  if (static_cast<std::size_t>(xmlDictSize(home_.names())) > most_names)
    refuse(XML_ERR_INTERNAL_ERROR, "The text has more than " + std::to_string(most_names) + " different names");
}

void builder::on_start(void* context, const xmlChar* local_name, const xmlChar* prefix, const xmlChar*,
                       int declaration_count, const xmlChar** declarations, int attribute_count, int,
                       const xmlChar** attributes) {
  builder& me = self(context);
  me.carefully([&] {
    me.check_names();
    me.open(local_name, prefix);
    if (declaration_count == 0 && attribute_count == 0) return;
    attribute* first = nullptr;
    attribute** const end = me.add_declarations(&first, declaration_count, declarations);
    me.add_attributes(end, attribute_count, attributes);
    me.current_->put_attributes(first);
    if (const attribute* const space = me.current_->find_attribute("xml:space"))
      me.keeps_blanks_.back() = space->value == "preserve";
  });
}

void builder::on_end(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.current_ = me.current_->parent();
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
  if (is_kept && current_ != &document_) current_->add_text(text_);
  text_.clear();
  has_reference_ = false;
}

void builder::on_section(void* context, const xmlChar* text, int length) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.current_->add_node(NODE_CDATA_SECTION, "#cdata-section", text_of(text, text + length));
  });
}

void builder::on_comment(void* context, const xmlChar* text) {
  builder& me = self(context);
  me.carefully([&] {
    me.finish_text();
    me.current_->add_node(NODE_COMMENT, "#comment", text_of(text));
  });
}

void builder::on_instruction(void* context, const xmlChar* target, const xmlChar* data) {
  builder& me = self(context);
  me.carefully([&] {
    me.check_names();
    me.finish_text();
    me.current_->add_node(NODE_PROCESSING_INSTRUCTION, me.home_.name(text_of(target)), text_of(data));
  });
}

void builder::on_document_type(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  builder& me = self(context);
  me.carefully([&] { me.refuse(XML_E_INVALIDATROOTLEVEL, "A document type declaration is not allowed"); });
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

// Sets up a parser. Its names go into the store's table, where the nodes find them.
parser_holder prepared(xmlParserCtxt* made, store& home) {
  if (made == nullptr) throw std::bad_alloc();
  parser_holder parser(made);
  xmlDictFree(parser->dict);
  parser->dict = home.names();
  xmlDictReference(parser->dict);
  // References are to come as what they stand for. Without document types only those of XML itself exist, so nothing
  // can grow by it, and the limits that guard against such growth may go: a large text is no attack.
  xmlCtxtUseOptions(parser.get(), XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC);
  return parser;
}

parser_holder make_parser(xmlInputReadCallback read, void* source, store& home) {
  [[maybe_unused]] static const bool is_ready = (xmlInitParser(), true);
  return prepared(xmlCreateIOParserCtxt(nullptr, nullptr, read, nullptr, source, XML_CHAR_ENCODING_NONE), home);
}

/// What the parser reads from: a text that is UTF-8 already.
class narrow_source {
 public:
  explicit narrow_source(std::string_view text) noexcept : text_(text) {}

  std::size_t read(char* buffer, std::size_t room_bytes) noexcept {
    const std::size_t count = text_.copy(buffer, room_bytes);
    text_.remove_prefix(count);
    return count;
  }

 private:
  std::string_view text_;
};

/// Or one that becomes UTF-8 as it is read, so that it never stands in memory twice. It ends when it grows too long.
class wide_source {
 public:
  wide_source(std::u16string_view text, std::size_t limit_bytes) noexcept : text_(text), left_bytes_(limit_bytes) {}

  std::size_t read(char* buffer, std::size_t room_bytes) noexcept {
    const std::size_t count = text_.read(buffer, room_bytes);
    is_too_long_ = is_too_long_ || count > left_bytes_;
    if (is_too_long_) return 0;
    left_bytes_ -= count;
    return count;
  }

  const narrowing& text() const noexcept { return text_; }
  bool is_too_long() const noexcept { return is_too_long_; }

 private:
  narrowing text_;
  std::size_t left_bytes_;
  bool is_too_long_ = false;
};

template <class Character>
bool has_declaration(std::basic_string_view<Character> text) {
  constexpr char begin[] = "<?xml";
  const bool has_begin = text.size() > 5 && std::equal(begin, begin + 5, text.begin());
  return has_begin && text[5] < 0x80 && is_blank(static_cast<char>(text[5]));
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

/// A source as the parser asks it. It ends where nothing that follows can make the text a good one: the parser would go
/// on behind a fault, and through an element of any size.
template <class Source>
class guarded_source {
 public:
  explicit guarded_source(Source& source) noexcept : source_(source) {}

  static int read(void* context, char* buffer, int room_bytes) noexcept {
    auto& self = *static_cast<guarded_source*>(context);
    if (self.failure_ != nullptr && self.failure_->code != 0) return 0;
    const std::size_t count = self.source_.read(buffer, static_cast<std::size_t>(room_bytes));
    return self.watch_.take({buffer, count}) ? static_cast<int>(count) : 0;
  }
  void heed(const parse_failure& failure) noexcept { failure_ = &failure; }
  bool has_too_many_attributes() const noexcept { return watch_.has_too_many(); }

 private:
  Source& source_;
  attribute_watch watch_{most_attributes};
  const parse_failure* failure_ = nullptr;
};

// Parses what a source gives.
template <class Source>
parsed parse_from(Source& source, dom_node& document) {
  guarded_source<Source> guarded(source);
  const parser_holder parser = make_parser(&guarded_source<Source>::read, &guarded, *document.home);
  builder nodes(*parser, document);
  nodes.attach();
  guarded.heed(nodes.failure());
  xmlParseDocument(parser.get());
  if (nodes.is_out_of_memory()) throw std::bad_alloc();
  parsed result = {nodes.failure(), {false, parser->standalone}};
  if (guarded.has_too_many_attributes()) {
    // The parser has found an unfinished tag: its place is right.
    result.failure.code = XML_ERR_INTERNAL_ERROR;
    result.failure.reason = "An element has more than " + std::to_string(most_attributes) + " attributes";
  }
  return result;
}

}  // namespace

parsed parse(std::u16string_view text, dom_node& document, std::size_t limit_bytes) {
  if (text.starts_with(u'\xFEFF')) text.remove_prefix(1);
  wide_source source(text, limit_bytes);
  parsed result = parse_from(source, document);
  if (source.text().is_stuck()) result.failure = unwritable(text, source.text().at());
  if (source.is_too_long()) result.failure = too_long(limit_bytes);
  result.head.is_present = has_declaration(text);
  return result;
}

parsed parse(std::string_view text, dom_node& document, std::size_t limit_bytes) {
  const bool is_clean = text.find('\0') == std::string_view::npos && platform::is_valid_utf8(text);
  if (!is_clean) return parse(std::u16string_view(platform::to_utf16(text)), document, limit_bytes);
  if (text.size() > limit_bytes) return {too_long(limit_bytes), {}};
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  narrow_source source(text);
  parsed result = parse_from(source, document);
  result.head.is_present = has_declaration(text);
  return result;
}

}  // namespace xml_model
