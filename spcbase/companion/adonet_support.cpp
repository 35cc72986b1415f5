#include "spcbase/companion/adonet_support.h"

#include <new>
#include <type_traits>

#include "spcbase/companion/internal/no_throw.h"
#include "spcbase/companion/internal/source_facts.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/counted.h"

// This function stands alone in its object file, and the linker leaves the library's call to it open
// (spcbase/replaceable_functions.list), so that a product's own comes before it.

namespace ADONETSupport {
namespace {

class SyntaxInfo final : public counted<_DbSyntaxInfo> {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == interface_id<_DbSyntaxInfo>::value;
    *object = known ? static_cast<_DbSyntaxInfo*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT get_connection(_DbConnection** connection) override {
    if (connection == nullptr) return E_POINTER;
    *connection = connection_;
    if (!connection_) return E_UNEXPECTED;
    connection_->AddRef();
    return S_OK;
  }

  HRESULT get_catalog_separator(BSTR* text) override { return answer(text, source_facts::catalog_separator); }
  HRESULT get_schema_separator(BSTR* text) override { return answer(text, source_facts::schema_separator); }
  HRESULT get_table_separator(BSTR* text) override {
    return answer(text, [](const source_facts::Ask&, CString& separator) {
      separator = source_facts::table_separator;
      return S_OK;
    });
  }
  HRESULT get_quote_prefix(BSTR* text) override { return answer(text, source_facts::identifier_quote); }
  HRESULT get_quote_suffix(BSTR* text) override { return answer(text, source_facts::identifier_quote); }

  HRESULT set_connection(_DbConnection* connection) override {
    if (connection == nullptr) return E_POINTER;
    connection_ = connection;
    return S_OK;
  }

 private:
  HRESULT ask(WORD type, CString& fact) const {
    _bstr_t text;
    const HRESULT result = connection_->get_information(type, text.GetAddress());
    fact = FAILED(result) ? CString() : to_cstring(text.GetBSTR());
    return result;
  }

  template <class Find>
  HRESULT answer(BSTR* text, const Find& find) const {
    if (text == nullptr) return E_POINTER;
    *text = nullptr;
    if (!connection_) return E_UNEXPECTED;
    return no_throw([&] {
      CString found;
      const HRESULT result = find([this](WORD type, CString& fact) { return ask(type, fact); }, found);
      if (SUCCEEDED(result)) *text = alloc_sys_string(found);
      return result;
    });
  }

  _com_ptr_t<_DbConnection> connection_;
};

}  // namespace

_com_ptr_t<_DbSyntaxInfo> create_syntax_info() {
  _com_ptr_t<_DbSyntaxInfo> syntax;
  syntax.Attach(new (std::nothrow) SyntaxInfo);
  return syntax;
}

}  // namespace ADONETSupport
