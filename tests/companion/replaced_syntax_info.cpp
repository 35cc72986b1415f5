// A product that brings an ADO.NET component of its own: it links the shared library and defines the function that
// makes a syntax object itself. The library must call this one, from inside too; the program says so by its exit
// status.
#include <cstdio>

#include "spcbase/companion/adonet_support.h"
#include "spcbase/datasource/definition.h"
#include "spcbase/platform/automation/bstr_t.h"

namespace {

class ProductSyntax final : public ADONETSupport::_DbSyntaxInfo {
 public:
  HRESULT QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
  HRESULT get_connection(ADONETSupport::_DbConnection**) override { return E_NOTIMPL; }
  HRESULT get_catalog_separator(BSTR* text) override { return give(text, "c"); }
  HRESULT get_schema_separator(BSTR* text) override { return give(text, "s"); }
  HRESULT get_table_separator(BSTR* text) override { return give(text, "t"); }
  HRESULT get_quote_prefix(BSTR* text) override { return give(text, "<"); }
  HRESULT get_quote_suffix(BSTR* text) override { return give(text, ">"); }
  HRESULT set_connection(ADONETSupport::_DbConnection*) override { return S_OK; }

  ULONG references = 0;

 private:
  static HRESULT give(BSTR* text, const char* answer) {
    *text = alloc_sys_string(answer);
    return S_OK;
  }
};

ProductSyntax* product_syntax = nullptr;

bool says(bool holds, const char* what) {
  if (!holds) std::printf("not so: %s\n", what);
  return holds;
}

bool learns_from_the_product() {
  ProductSyntax syntax;
  product_syntax = &syntax;
  ADONETDBInfo source;
  source.version = 3;
  _com_ptr_t<ADONETSupport::_DbConnection> none;
  source.update_internal_data(none);
  const CString learnt = source.catalog_separator + source.schema_separator + source.table_separator +
                         source.quote_prefix + source.quote_suffix;
  product_syntax = nullptr;
  const bool told = says(learnt == "cst<>", "the answers are the product's");
  const bool version = says(source.version == 0, "the version is 0");
  return says(syntax.references == 0, "the object is given back") && told && version;
}

bool fails_without_an_object() {
  ADONETDBInfo source;
  source.version = 3;
  source.table_separator = "kept";
  CDatabase database;
  auto connection = ADONETSupport::connection_on(database);
  try {
    source.update_internal_data(connection);
  } catch (const _com_error& e) {
    const bool code = says(e.Error() == E_POINTER, "the code is 0x80004003");
    return says(source.version == 3 && source.table_separator == "kept", "nothing was learnt") && code;
  }
  return says(false, "no object is a failure");
}

}  // namespace

namespace ADONETSupport {

_com_ptr_t<_DbSyntaxInfo> create_syntax_info() { return _com_ptr_t<_DbSyntaxInfo>(product_syntax); }

}  // namespace ADONETSupport

int main() {
  const bool learns = learns_from_the_product();
  const bool fails = fails_without_an_object();
  return learns && fails ? 0 : 1;
}
