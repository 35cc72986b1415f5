#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "spcbase/companion/connect_string.h"
#include "spcbase/datasource/definition.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/utility/encoders.h"
#include "spcbase/utility/internal/text_cipher.h"
#include "spcbase/utility/internal/xml_elements.h"
#include "spcbase/utility/text.h"

namespace {

constexpr std::string_view declaration = R"(<?xml version="1.0" ?>)";

/// The version that hides the connection string by `encode_str`. Earlier ones have it in clear, later ones enciphered.
constexpr int version_of_hidden_string = 3;

template <class Info>
constexpr bool is_ole_db = std::is_same_v<Info, OLEDBInfo>;

/// The key of both ciphers. Ids beyond a 37th of the range wrap around, as those stored already did.
CString cipher_key_of(int id) {
  CString key;
  key.Format("%d", static_cast<int>(static_cast<unsigned>(id) * 37U));
  return key;
}

/// The document while it is written.
class Writer {
 public:
  explicit Writer(int version) : document_(make_document()) {
    prohibit_document_type(document_);
    root_ = document_->createElement("external_database");
    set_int_attribute(root_, "version", version);
  }

  void add(const char* name, const CString& text) { root_->appendChild(make_text_element(document_, name, text)); }
  void add_number(const char* name, int number) { root_->appendChild(make_int_element(document_, name, number)); }
  void add_flag(const char* name, bool flag) { add(name, flag ? "true" : "false"); }
  void add_syntax(const char* name, const UserDefinedSyntaxInfo& syntax) {
    root_->appendChild(syntax.get_xml(document_, name));
  }

  CString finish() {
    document_->PutrefdocumentElement(root_);
    std::string text(declaration);
    text += xml_narrow::xml_of(*document_);
    return CString(std::move(text));
  }

 private:
  IXMLDOMDocumentPtr document_;
  IXMLDOMElementPtr root_;
};

template <class Info>
void write_identity(Writer& writer, const Info& info) {
  writer.add_number("id", info.id);
  writer.add("name", info.name);
  writer.add("description", info.description);
  writer.add("type", info.type);
  writer.add_number("flag1", Info::kind);
  writer.add_number("flag2", info.flag2);
}

/// The connection string as it may stand in the document.
CString protected_string(const DataSourceInfoBase& info, bool hide_password) {
  if (!hide_password) return TextCipher().encrypt_bytes(info.connection_string.view(), cipher_key_of(info.id));
  ConnectStringUtil shown(info.connection_string);
  shown.HidePassword();
  return std::move(shown.text);
}

template <class Info>
void write_names_of_parts(Writer& writer, const Info& info) {
  writer.add("catalog_separator", info.catalog_separator);
  writer.add("schema_separator", info.schema_separator);
  writer.add("table_separator", info.table_separator);
  writer.add("quote_prefix", info.quote_prefix);
  writer.add("quote_suffix", info.quote_suffix);
}

template <class Info>
CString write_definition(const Info& info, bool include_identity, bool hide_password) {
  Writer writer(info.version);
  if (include_identity) write_identity(writer, info);
  if constexpr (!is_ole_db<Info>) writer.add("provider", info.provider);
  // The second name keeps readers from judging by the version, which may be that of an older definition.
  if (!info.connection_string.IsEmpty())
    writer.add(is_ole_db<Info> ? "connection_string_2" : "connection_string", protected_string(info, hide_password));
  writer.add_flag("quote_catalog", info.quote_catalog);
  writer.add_flag("quote_schema", info.quote_schema);
  writer.add_flag("quote_table", info.quote_table);
  writer.add_flag("quote_column", info.quote_column);
  if constexpr (is_ole_db<Info>) {
    writer.add_number("option", info.option);
    writer.add_number("internal_option", info.internal_option);
  }
  write_names_of_parts(writer, info);
  if constexpr (!is_ole_db<Info>) {
    // Kept: a second time; readers take the last one.
    writer.add("quote_suffix", info.quote_suffix);
    if (info.default_command_timeout != -1) writer.add_number("default_command_timeout", info.default_command_timeout);
  }
  if (info.syntax_info) writer.add_syntax("sql_syntax_info", *info.syntax_info);
  return writer.finish();
}

/// What is done with an element of a name.
template <class Info>
struct ElementRule {
  std::string_view name;
  void (*read)(Info& info, const IXMLDOMElementPtr& element);
};

template <class Info, auto field>
void read_text(Info& info, const IXMLDOMElementPtr& element) {
  info.*field = get_elem_text(element);
}

template <class Info, auto field>
void read_number(Info& info, const IXMLDOMElementPtr& element) {
  info.*field = get_elem_int(element);
}

template <class Info, auto field>
void read_flag(Info& info, const IXMLDOMElementPtr& element) {
  info.*field = check_bool_value(get_elem_text(element));
}

template <class Info>
void read_name(Info& info, const IXMLDOMElementPtr& element) {
  info.name = fix_spc_name(get_elem_text(element), false);
}

template <class Info>
void check_kind(Info&, const IXMLDOMElementPtr& element) {
  // Kept: the same words for either kind.
  if (get_elem_int(element) != Info::kind) throw_db_exception_by_id(msg::not_ole_db_connection);
}

template <class Info>
void read_enciphered_string(Info& info, const IXMLDOMElementPtr& element) {
  info.connection_string = TextCipher().decrypt(get_elem_text(element), cipher_key_of(info.id));
}

void read_string_by_version(OLEDBInfo& info, const IXMLDOMElementPtr& element) {
  CString text = get_elem_text(element);
  if (text.IsEmpty()) return;
  if (info.version < version_of_hidden_string)
    info.connection_string = std::move(text);
  else if (info.version == version_of_hidden_string)
    info.connection_string = decode_str(text, cipher_key_of(info.id));
  else
    info.connection_string = TextCipher().decrypt(text, cipher_key_of(info.id));
}

template <class Info>
void read_quote(Info& info, const IXMLDOMElementPtr& element) {
  info.quote_prefix = get_elem_text(element);
  info.quote_suffix = info.quote_prefix;
}

template <class Info>
void read_syntax(Info& info, const IXMLDOMElementPtr& element) {
  info.syntax_info = std::make_shared<UserDefinedSyntaxInfo>();
  info.syntax_info->set_xml(element);
}

template <class Info>
constexpr ElementRule<Info> common_rules[] = {
    {"id", read_number<Info, &Info::id>},
    {"name", read_name<Info>},
    {"description", read_text<Info, &Info::description>},
    {"type", read_text<Info, &Info::type>},
    {"flag1", check_kind<Info>},
    {"flag2", read_number<Info, &Info::flag2>},
    {"quote_catalog", read_flag<Info, &Info::quote_catalog>},
    {"quote_schema", read_flag<Info, &Info::quote_schema>},
    {"quote_table", read_flag<Info, &Info::quote_table>},
    {"quote_column", read_flag<Info, &Info::quote_column>},
    {"catalog_separator", read_text<Info, &Info::catalog_separator>},
    {"schema_separator", read_text<Info, &Info::schema_separator>},
    {"table_separator", read_text<Info, &Info::table_separator>},
    {"identifier_quote", read_quote<Info>},  // the old single one
    {"quote_prefix", read_text<Info, &Info::quote_prefix>},
    {"quote_suffix", read_text<Info, &Info::quote_suffix>},
    {"sql_syntax_info", read_syntax<Info>},
};

constexpr ElementRule<OLEDBInfo> ole_db_rules[] = {
    {"connection_string", read_string_by_version},
    {"connection_string_2", read_enciphered_string<OLEDBInfo>},
    {"option", read_number<OLEDBInfo, &OLEDBInfo::option>},
    {"internal_version", read_number<OLEDBInfo, &OLEDBInfo::internal_option>},  // the old name
    {"internal_option", read_number<OLEDBInfo, &OLEDBInfo::internal_option>},
};

constexpr ElementRule<ADONETDBInfo> adonet_rules[] = {
    {"provider", read_text<ADONETDBInfo, &ADONETDBInfo::provider>},
    {"connection_string", read_enciphered_string<ADONETDBInfo>},
    {"default_command_timeout", read_number<ADONETDBInfo, &ADONETDBInfo::default_command_timeout>},
};

/// Applies the rule for a name, if the table has one.
template <class Info, class Rules>
bool apply_rule(const Rules& rules, std::string_view name, Info& info, const IXMLDOMElementPtr& element) {
  const auto* const rule = std::ranges::find(rules, name, &ElementRule<Info>::name);
  if (rule == std::ranges::end(rules)) return false;
  rule->read(info, element);
  return true;
}

template <class Info, class Rules>
void read_definition(Info& info, const Rules& rules_of_kind, const CString& xml) {
  info.syntax_info.reset();
  const IXMLDOMDocumentPtr document = load_xml_text(xml);
  const IXMLDOMElementPtr root = document->GetdocumentElement();
  info.version = root->getAttribute("version");
  walk_child_elements(root, [&](const CString& name, const IXMLDOMElementPtr& child) {
    if (!apply_rule(common_rules<Info>, name.view(), info, child)) apply_rule(rules_of_kind, name.view(), info, child);
  });
}

}  // namespace

CString OLEDBInfo::get_xml(bool include_identity, bool hide_password) const {
  return write_definition(*this, include_identity, hide_password);
}

void OLEDBInfo::set_xml(const CString& xml) { read_definition(*this, ole_db_rules, xml); }

CString ADONETDBInfo::get_xml(bool include_identity, bool hide_password) const {
  return write_definition(*this, include_identity, hide_password);
}

void ADONETDBInfo::set_xml(const CString& xml) { read_definition(*this, adonet_rules, xml); }
