#include "spcbase/companion/adonet_support.h"
#include "spcbase/companion/internal/no_throw.h"
#include "spcbase/companion/internal/source_facts.h"
#include "spcbase/platform/automation/counted.h"

namespace ADONETSupport {
namespace {

class Connection final : public counted<_DbConnection> {
 public:
  explicit Connection(CDatabase& database) : database_(database) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == interface_id<_DbConnection>::value;
    *object = known ? static_cast<_DbConnection*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT get_information(unsigned short type, BSTR* fact) override {
    if (fact == nullptr) return E_POINTER;
    *fact = nullptr;
    return no_throw([&] {
      CString text;
      const HRESULT result = source_facts::of_connection(database_, type, text);
      if (SUCCEEDED(result)) *fact = alloc_sys_string(text);
      return result;
    });
  }

 private:
  CDatabase& database_;
};

}  // namespace

_com_ptr_t<_DbConnection> connection_on(CDatabase& database) {
  _com_ptr_t<_DbConnection> connection;
  connection.Attach(new Connection(database));
  return connection;
}

}  // namespace ADONETSupport
