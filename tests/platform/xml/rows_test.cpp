// Plan
//   Every recorded row of msxml.tsv: loading, walking, writing, making elements and reading them back, building step by
//   step, names. Rows that bind nobody, and those that our own rules decide otherwise, stand in one table each with
//   what holds here and why; a row of these tables that the file does not have is a failure
#include <algorithm>
#include <functional>
#include <map>
#include <regex>
#include <set>

#include "tests/platform/xml/model.h"
#include "tests/support/vector_file.h"

namespace {

using test_support::VectorRow;

std::vector<VectorRow> rows_of(const std::set<std::string>& operations) {
  std::vector<VectorRow> chosen;
  for (VectorRow& row : test_support::read_vectors("msxml.tsv"))
    if (operations.contains(row["operation"])) chosen.push_back(std::move(row));
  EXPECT_FALSE(chosen.empty());
  return chosen;
}

/// What holds here in the place of a row, by the row's input.
class Settled {
 public:
  using Answers = std::map<std::string, std::string>;

  explicit Settled(Answers answers) : answers_(std::move(answers)) {}
  ~Settled() { EXPECT_EQ(used_.size(), answers_.size()) << "a settled row is not in the file"; }
  Settled(const Settled&) = delete;
  Settled& operator=(const Settled&) = delete;

  std::string expected(const std::string& input, const std::string& recorded) {
    const auto found = answers_.find(input);
    if (found == answers_.end()) return recorded;
    used_.insert(input);
    return found->second;
  }

 private:
  Answers answers_;
  std::set<std::string> used_;
};

TEST(Rows, texts_load_or_fail_as_recorded) {
  Settled settled(Settled::Answers{
      // Namespaces in XML 1.0: a prefix must be declared, a name has at most one colon with something on both sides,
      // and a prefix cannot be undeclared. The platform's documents have an error text for the first.
      {"<a:b/>", "0"},
      {"<a:/>", "0"},
      {"<a:b:c xmlns:a='u'/>", "0"},
      {"<a x:b='1'/>", "0"},
      {"<a xmlns:x=''/>", "0"},
      // "ProhibitDTD" set to true prohibits the inclusion of a DTD, say the documents. Here nothing allows one, so the
      // rows recorded without the property are refused too.
      {"<!DOCTYPE a><a/>", "0"},
      {"<!DOCTYPE a []><a/>", "0"},
      {"<?xml version='1.0'?>\n<!DOCTYPE a>\n<a/>", "0"},
      {"<!DOCTYPE a SYSTEM 'x.dtd'><a/>", "0"},
      {"<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>", "0"},
  });
  for (const VectorRow& row : rows_of({"load"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const IXMLDOMDocumentPtr document = model::new_document();
    const bool is_good = document->loadXML(row["input"].c_str()) == VARIANT_TRUE;
    EXPECT_EQ(is_good ? "1" : "0", settled.expected(row["input"], row["success"]));
    const IXMLDOMParseErrorPtr error = document->GetparseError();
    EXPECT_EQ(error->GeterrorCode() == 0, is_good);
    EXPECT_EQ(!error->Getreason(), is_good);
    EXPECT_EQ(error->Getline() == 0, is_good);
  }
}

/// The nodes below one, as the rows write them.
void tell_below(IXMLDOMNode& parent, int depth, std::string& told) {
  const IXMLDOMNodeListPtr children = parent.GetchildNodes();
  while (const IXMLDOMNodePtr child = children->nextNode()) {
    const _variant_t value = child->GetnodeValue();
    if (!told.empty()) told += " ; ";
    told += std::to_string(depth) + ',' + std::to_string(child->GetnodeType()) + ',' +
            model::narrow(child->GetnodeName()) + ',' +
            (value.vt == VT_NULL ? "null" : '[' + model::value_of(value) + ']');
    ATL::CComPtr<IXMLDOMElement> element;
    if (child->QueryInterface(interface_id<IXMLDOMElement>::value, reinterpret_cast<void**>(&element)) == E_NOINTERFACE)
      told += ",80004002";
    tell_below(*child, depth + 1, told);
  }
}

std::string nodes_below(IXMLDOMNode& parent) {
  std::string told;
  tell_below(parent, 0, told);
  return told;
}

/// The texts and CDATA sections below a node as one text.
std::string text_below(IXMLDOMNode& parent) {
  std::string text;
  const IXMLDOMNodeListPtr children = parent.GetchildNodes();
  while (const IXMLDOMNodePtr child = children->nextNode()) {
    const DOMNodeType type = child->GetnodeType();
    if (type == NODE_TEXT || type == NODE_CDATA_SECTION) text += model::value_of(child->GetnodeValue());
    if (type == NODE_ELEMENT) text += text_below(*child);
  }
  return text;
}

TEST(Rows, walks_meet_the_recorded_nodes) {
  Settled settled(Settled::Answers{
      // Two sections are two nodes.
      {"<a><![CDATA[a]]><![CDATA[b]]></a>",
       "0,1,a,null ; 1,4,#cdata-section,[a],80004002 ; "
       "1,4,#cdata-section,[b],80004002"},
  });
  for (const VectorRow& row : rows_of({"walk"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const IXMLDOMDocumentPtr document = model::load(row["input"].c_str());
    EXPECT_EQ(nodes_below(*document), settled.expected(row["input"], row["output"]));
  }
}

TEST(Rows, texts_of_walked_nodes_are_the_recorded_ones) {
  // The model cannot be asked for the text of an element; what its nodes hold must make it up.
  Settled settled(Settled::Answers{
      // The documents: white space that was stripped is only a flag, which the text of a node turns into a blank, and
      // blanks around the whole are left out. The nodes themselves have the one not and the others still.
      {"<a><b>1</b> <b>2</b></a>", "12"},
      {"<a> text </a>", " text "},
      {"<a>  lead<b/>trail  </a>", "  leadtrail  "},
      // The documents: a character reference to a newline is handled as what it stands for, so it is no white space
      // between tags.
      {"<a>&#10;</a>", "\n"},
  });
  for (const VectorRow& row : rows_of({"text"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const IXMLDOMDocumentPtr document = model::load(row["input"].c_str());
    EXPECT_EQ(text_below(*document->GetdocumentElement()), settled.expected(row["input"], row["output"]));
  }
}

/// A written document without what the rows do not fix: line ends in texts, and white space between tags.
std::string without_loose_blanks(const std::string& xml) {
  const std::string one_line_end = std::regex_replace(xml, std::regex("\r\n"), "\n");
  return std::regex_replace(one_line_end, std::regex(">[ \t\n]+<"), "><");
}

void expect_written(const VectorRow& row, const std::string& written, const std::string& expected) {
  const bool is_loose = row["note"].find("suspect-white-space") != std::string::npos;
  EXPECT_EQ(is_loose ? without_loose_blanks(written) : written, is_loose ? without_loose_blanks(expected) : expected);
}

TEST(Rows, documents_are_written_as_recorded) {
  Settled settled(Settled::Answers{
      // As above: white space in references is content, the rest between tags goes.
      {"<a>&#32;</a>", "<a>&#32;</a>\r\n"},
      {"<a>&#10;</a>", "<a>&#10;</a>\r\n"},
      // The documents: the text is always Unicode, so an encoding says nothing in it.
      {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>", "<?xml version=\"1.0\"?>\r\n<a/>\r\n"},
  });
  for (const VectorRow& row : rows_of({"reserialise"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const IXMLDOMDocumentPtr document = model::load(row["input"].c_str());
    const std::string written = model::xml_of(document);
    EXPECT_TRUE(written.ends_with("\r\n"));
    expect_written(row, written, settled.expected(row["input"], row["output"]));
  }
}

/// "text=T attribute=A", where (unset) is not set at all.
struct Made {
  explicit Made(const std::string& input) {
    const std::size_t split = input.rfind(" attribute=");
    const std::string text = input.substr(5, split - 5);
    const std::string value = input.substr(split + 11);
    root = document->createElement("root");
    if (text != "(unset)") text_code = model::code_of([&] { root->Puttext(text.c_str()); });
    if (value != "(unset)") attribute_code = model::code_of([&] { root->setAttribute("a", value.c_str()); });
    document->PutrefdocumentElement(root);
  }

  IXMLDOMDocumentPtr document = model::new_document();
  IXMLDOMElementPtr root;
  HRESULT text_code = S_OK;
  HRESULT attribute_code = S_OK;
};

TEST(Rows, made_elements_are_written_as_recorded) {
  Settled settled(Settled::Answers{
      // A line end of two characters inside a text is one that only a reference keeps.
      {"text=a\r\nb attribute=(unset)", "<root>a&#13;\nb</root>\r\n"},
      // White space alone would be lost when it is loaded again.
      {"text=\n attribute=(unset)", "<root>&#10;</root>\r\n"},
      // The documents: since version 3.0 characters outside XML's ranges are refused. So they are when they are set.
      {"text=\x01 attribute=(unset)", "<root/>\r\n"},
      {"text=(unset) attribute=\x01", "<root/>\r\n"},
  });
  for (const VectorRow& row : rows_of({"create"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const Made made(row["input"]);
    expect_written(row, model::xml_of(made.document), settled.expected(row["input"], row["output"]));
    const bool has_children = made.root->hasChildNodes() == VARIANT_TRUE;
    EXPECT_EQ(has_children ? "children" : "no-children", row["success"]);
    const bool is_refused = row["input"].find('\x01') != std::string::npos;
    EXPECT_EQ(made.text_code == S_OK && made.attribute_code == S_OK, !is_refused);
    if (is_refused) {
      EXPECT_EQ(std::min(made.text_code, made.attribute_code), XML_E_BADCHARDATA);
    }
  }
}

TEST(Rows, made_elements_come_back_as_recorded) {
  Settled settled(Settled::Answers{
      // See the writing of this text: it is not lost here.
      {"text=\n attribute=(unset)", "text=\n nodes=0,3,#text,[\n],80004002 attribute=vt1,00000001"},
      // Refused when it was set, so there is nothing to come back.
      {"text=(unset) attribute=\x01", "text= nodes= attribute=vt1,00000001"},
  });
  for (const VectorRow& row : rows_of({"create-back"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const Made made(row["input"]);
    const IXMLDOMDocumentPtr back = model::load(model::xml_of(made.document).c_str());
    const IXMLDOMElementPtr root = back->GetdocumentElement();
    const _variant_t value = root->getAttribute("a");
    const std::string told = "text=" + text_below(*root) + " nodes=" + nodes_below(*root) + " attribute=" +
                             (value.vt == VT_NULL ? "vt1,00000001" : '[' + model::value_of(value) + ']');
    EXPECT_EQ(told, settled.expected(row["input"], row["output"]));
  }
}

/// The document of the build rows, and what its steps said beside the text.
class Builder {
 public:
  using Step = std::function<std::string(Builder&)>;

  IXMLDOMElementPtr make(const char* name, const char* text = nullptr) {
    IXMLDOMElementPtr element = document->createElement(name);
    if (text != nullptr) element->Puttext(text);
    return element;
  }
  std::string xml() { return model::xml_of(document); }
  std::string add(IXMLDOMElementPtr& slot, const char* name, const char* text = nullptr) {
    slot = make(name, text);
    root->appendChild(slot);
    return xml();
  }
  std::string root_name() { return document->GetdocumentElement() ? "something" : "nothing"; }
  std::string begin() {
    root = make("root");
    document->PutrefdocumentElement(root);
    return xml();
  }
  std::string nest() {
    const IXMLDOMElementPtr g = make("g");
    g->appendChild(make("h", "deep"));
    root->appendChild(g);
    return xml();
  }
  std::string set(const char* name, const _variant_t& value) {
    root->setAttribute(name, value);
    return xml();
  }
  std::string import() {
    const IXMLDOMDocumentPtr other = model::new_document();
    const IXMLDOMElementPtr foreign = other->createElement("foreign");
    foreign->Puttext("q");
    document->GetdocumentElement()->appendChild(foreign);
    return xml();
  }

  IXMLDOMDocumentPtr document = model::new_document();
  IXMLDOMElementPtr root, a, b, c;
};

const std::map<std::string, Builder::Step>& build_steps() {
  static const std::map<std::string, Builder::Step> steps = {
      {"xml of an empty document", [](Builder& it) { return it.xml(); }},
      {"documentElement of an empty document", [](Builder& it) { return it.root_name(); }},
      {"root without children", [](Builder& it) { return it.begin(); }},
      {"root with child a=1", [](Builder& it) { return it.add(it.a, "a", "1"); }},
      {"then an empty child b", [](Builder& it) { return it.add(it.b, "b"); }},
      {"then a child c with empty text", [](Builder& it) { return it.add(it.c, "c", ""); }},
      {"hasChildNodes of c", [](Builder& it) { return it.c->hasChildNodes() == VARIANT_TRUE ? "true" : "false"; }},
      {"then attributes version, zeta, alpha of root",
       [](Builder& it) {
         it.set("version", "3");
         it.set("zeta", "z");
         return it.set("alpha", "a");
       }},
      {"then version set again", [](Builder& it) { return it.set("version", "4"); }},
      {"then text of a set again",
       [](Builder& it) {
         it.a->Puttext("2");
         return it.xml();
       }},
      {"then a child g holding h=deep", [](Builder& it) { return it.nest(); }},
      {"then a appended again (moves)",
       [](Builder& it) {
         it.root->appendChild(it.a);
         return it.xml();
       }},
      {"then text of root set",
       [](Builder& it) {
         it.root->Puttext("t");
         return it.xml();
       }},
      {"getAttribute version", [](Builder& it) { return model::value_of(it.root->getAttribute("version")); }},
      {"getAttribute of an absent attribute",
       [](Builder& it) { return model::value_of(it.root->getAttribute("absent")); }},
      {"getAttribute with other case", [](Builder& it) { return model::value_of(it.root->getAttribute("Version")); }},
      {"setAttribute with an integer variant", [](Builder& it) { return it.set("i4", 7); }},
      {"documentElement replaced",
       [](Builder& it) {
         it.document->PutrefdocumentElement(it.make("second"));
         return it.xml();
       }},
      {"appendChild of a second root to the document",
       [](Builder& it) {
         EXPECT_EQ(model::code_of([&] { it.document->appendChild(it.make("third")); }), E_FAIL);
         return it.xml();
       }},
      {"appendChild of an element of another document", [](Builder& it) { return it.import(); }},
      {"xml after a failed load of a filled document",
       [](Builder& it) {
         EXPECT_EQ(it.document->loadXML("<a>"), VARIANT_FALSE);
         return it.xml();
       }},
      {"documentElement after a failed load", [](Builder& it) { return it.root_name(); }},
      {"error code after a good load",
       [](Builder& it) {
         EXPECT_EQ(it.document->loadXML("<a/>"), VARIANT_TRUE);
         return std::to_string(it.document->GetparseError()->GeterrorCode());
       }},
      {"reason after a good load",
       [](Builder& it) { return model::narrow(it.document->GetparseError()->Getreason()); }},
  };
  return steps;
}

TEST(Rows, a_document_is_built_step_by_step_as_recorded) {
  Settled settled(Settled::Answers{
      // A document has one root, says the DOM; a second one is refused and what stood stays.
      {"appendChild of a second root to the document", "<second/>\r\n"},
      {"appendChild of an element of another document", "<second><foreign>q</foreign></second>\r\n"},
  });
  Builder builder;
  std::size_t played = 0;
  for (const VectorRow& row : rows_of({"build"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    // Only documents are written here; for an element the row has nothing to say.
    if (row["input"] == "xml of the element g") {
      EXPECT_EQ(row["output"], "");
      continue;
    }
    const auto step = build_steps().find(row["input"]);
    ASSERT_NE(step, build_steps().end()) << "no step for this row";
    expect_written(row, step->second(builder), settled.expected(row["input"], row["output"]));
    ++played;
  }
  EXPECT_EQ(played, build_steps().size());
}

TEST(Rows, names_are_taken_or_refused) {
  // XML 1.0: no name begins with a digit or holds "<". The codes are those of the documented error texts.
  const std::map<std::string, HRESULT> refused = {
      {"", E_FAIL}, {"1a", XML_E_BADSTARTNAMECHAR}, {"a<", XML_E_BADNAMECHAR}};
  for (const VectorRow& row : rows_of({"createElement"})) {
    SCOPED_TRACE(row.place() + ' ' + row["input"]);
    const auto found = refused.find(row["input"]);
    const HRESULT expected = found == refused.end() ? S_OK : found->second;
    const IXMLDOMDocumentPtr document = model::new_document();
    EXPECT_EQ(model::code_of([&] { document->PutrefdocumentElement(document->createElement(row["input"].c_str())); }),
              expected);
    if (!row.is_suspect() && expected == S_OK) {
      EXPECT_EQ(model::xml_of(document), row["output"] + "\r\n");
    }
    if (!row.is_suspect()) {
      EXPECT_EQ(test_support::hex32(row["hresult"]), static_cast<std::uint32_t>(expected));
    }
    // A prefix may be given, but not written where nothing declares it: nobody could load it.
    if (row["input"] == "a:b") {
      EXPECT_EQ(model::code_of([&] { document->Getxml(); }), E_FAIL);
    }
  }
}

}  // namespace
