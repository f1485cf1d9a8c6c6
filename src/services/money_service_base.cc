#include "services/money_service_base.h"

#include "base/error_codes.h"
#include "base/text_util.h"

namespace orvelan {

const char* const MoneyServiceBase::kAccountTypeNames[kAccountTypeCount] = {"CHECKING", "SAVINGS", "MONEYMRKT",
                                                                            "CREDITLINE", "CREDITCARD"};

int32_t MoneyServiceBase::AccountTypeIndex(std::string_view text, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    if (EqualsNoCase(text, kAccountTypeNames[i])) return i;
  }
  return 0;
}

int MoneyServiceBase::InitDefaults() {
  if (OFXClient::InitDefaults() == 0) return 0;
  token_.Assign("0");
  request_type_ = 0;
  ClearResponse();
  return 1;
}

int MoneyServiceBase::Reset() {
  token_.Assign("0");
  ClearResponse();
  return OFXClient::Reset();
}

int MoneyServiceBase::ClearResponse() {
  lost_sync_ = false;
  ClearSyncRecords();
  if ((sync_types_ & (1u << request_type_)) == 0) token_.Assign("0");
  return OFXClient::ClearResponse();
}

int MoneyServiceBase::Send(int32_t type) {
  request_type_ = type;
  SelectTemplate();
  if (int rc = CheckInputs(); rc != kOk) return rc;
  return Exchange();
}

int MoneyServiceBase::Synchronize(int32_t type, const char* token, const char*& answer) {
  answer = "";
  request_type_ = type;
  if (int rc = token_.Assign(token == nullptr || *token == '\0' ? "0" : token); rc != kOk) return rc;
  if (int rc = Send(type); rc != kOk) return rc;
  answer = token_.Data();
  return kOk;
}

void MoneyServiceBase::ChooseTemplate(const char* sgml, const char* xml) {
  const char version = OFXVersion()[0];
  if (version == '1') template_.Load(sgml);
  if (version == '2') template_.Load(xml);
}

int MoneyServiceBase::TokenLine(ByteString& out) const {
  if (token_.EqualsNoCase("REFRESH")) return Element(out, "REFRESH", "Y");
  return Element(out, "TOKEN", token_.View());
}

int MoneyServiceBase::Missing(const char* detail) {
  SetErrorText("Missing required field: ", detail, nullptr, nullptr);
  return kErrMissingField;
}

int MoneyServiceBase::Select(std::string_view path) {
  MarkupDocument& doc = Walked();
  if (int rc = doc.SelectPath(path); rc != kOk) return ReportError(rc, doc.GetLastError());
  return kOk;
}

const char* MoneyServiceBase::FirstChild(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (Walked().HasPath(name)) return name;
  }
  return nullptr;
}

int MoneyServiceBase::EnterSync(std::string_view wrapper) {
  MarkupDocument& doc = Document();
  if (int rc = CheckWrapperStatus(wrapper); rc != kOk) return rc;
  if (int rc = ReadResponseValue(token_, doc, "TOKEN", true); rc != kOk) return rc;
  if (int rc = Select(".."); rc != kOk) return rc;
  if (int rc = ReadField(doc, "LOSTSYNC", scratch_, false); rc != kOk) return rc;
  lost_sync_ = scratch_.Equals("Y");
  return lost_sync_ ? 1 : kOk;
}

}  // namespace orvelan
