// The single-instance facade: six process-wide wrappers and the plain
// functions that fill and run them.
#include "orvelan.hpp"

#define ORVELAN_ACCEPT_EVERY_CERTIFICATE(My, C)                           \
  int My::FireSSLServerAuthentication(C##SSLServerAuthenticationEventParams* e) { \
    e->Accept = 1;                                                        \
    return 0;                                                             \
  }
ORVELAN_ACCEPT_EVERY_CERTIFICATE(MyFiProfile, FIProfile)
ORVELAN_ACCEPT_EVERY_CERTIFICATE(MyAccount, Account)
ORVELAN_ACCEPT_EVERY_CERTIFICATE(MyBankStatement, BankStatement)
ORVELAN_ACCEPT_EVERY_CERTIFICATE(MyCCStatement, CCStatement)
ORVELAN_ACCEPT_EVERY_CERTIFICATE(MyInvStatement, InvStatement)
ORVELAN_ACCEPT_EVERY_CERTIFICATE(MyBillPayment, BillPayment)

// One translation unit, so they are built in this order at load and torn down
// in reverse at unload.
MyFiProfile fiProfile1("");
MyAccount account1("");
MyBankStatement bankStatement1("");
MyCCStatement ccStatement1("");
MyInvStatement invStatement1("");
MyBillPayment billPayment1("");

namespace {

// The nine sign-on parameters the profile and account runners share.
template <class W>
void SetSignOn(W& w, const char* user, const char* password, const char* fi_url, const char* fi_id,
               const char* fi_organization, const char* last_update, const char* app_id, const char* app_version,
               const char* ofx_version) {
  w.SetOFXUser(user);
  w.SetOFXPassword(password);
  w.SetFIUrl(fi_url);
  w.SetFIId(fi_id);
  w.SetFIOrganization(fi_organization);
  w.SetLastUpdate(last_update);
  w.SetOFXAppId(app_id);
  w.SetOFXAppVersion(app_version);
  w.SetOFXVersion(ofx_version);
}

// The credentials and institution every bill-payment runner begins with.
void SetPaymentSignOn(const char* user, const char* password, const char* fi_url, const char* fi_id,
                      const char* fi_organization, const char* app_id, const char* app_version) {
  billPayment1.SetOFXUser(user);
  billPayment1.SetOFXPassword(password);
  billPayment1.SetFIUrl(fi_url);
  billPayment1.SetFIId(fi_id);
  billPayment1.SetFIOrganization(fi_organization);
  billPayment1.SetOFXAppId(app_id);
  billPayment1.SetOFXAppVersion(app_version);
}

void SetPayeeAddress(const char* name, const char* addr1, const char* addr2, const char* addr3, const char* city,
                     const char* state, const char* postal_code, const char* country, const char* phone) {
  billPayment1.SetPayeeName(name);
  billPayment1.SetPayeeAddr1(addr1);
  billPayment1.SetPayeeAddr2(addr2);
  billPayment1.SetPayeeAddr3(addr3);
  billPayment1.SetPayeeCity(city);
  billPayment1.SetPayeeState(state);
  billPayment1.SetPayeePostalCode(postal_code);
  billPayment1.SetPayeeCountry(country);
  billPayment1.SetPayeePhone(phone);
}

void SetPaymentFrom(const char* account_id, const char* bank_id, int account_type) {
  billPayment1.SetPaymentFromAccountId(account_id);
  billPayment1.SetPaymentFromBankId(bank_id);
  billPayment1.SetPaymentFromAccountType(account_type);
}

// The first 23 parameters of PayBill and ModifyBill.
void SetBill(const char* user, const char* password, const char* from_account_id, const char* from_bank_id,
             const char* fi_url, const char* fi_id, const char* fi_organization, int from_account_type,
             const char* app_id, const char* app_version, const char* payee_name, const char* payee_addr1,
             const char* payee_addr2, const char* payee_addr3, const char* payee_city, const char* payee_state,
             const char* payee_postal_code, const char* payee_country, const char* payee_phone,
             const char* payee_account, const char* amount, const char* date_due, const char* memo) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  SetPaymentFrom(from_account_id, from_bank_id, from_account_type);
  SetPayeeAddress(payee_name, payee_addr1, payee_addr2, payee_addr3, payee_city, payee_state, payee_postal_code,
                  payee_country, payee_phone);
  billPayment1.SetPayeeAccount(payee_account);
  billPayment1.SetPaymentAmount(amount);
  billPayment1.SetPaymentDateDue(date_due);
  billPayment1.SetPaymentMemo(memo);
}

}  // namespace

int Initialize(void) {
  fiProfile1.Reset();
  account1.Reset();
  bankStatement1.Reset();
  ccStatement1.Reset();
  invStatement1.Reset();
  const int rc = billPayment1.Reset();
  invStatement1.SetIncludeTransactions(1);
  invStatement1.SetIncludeBalances(1);
  return rc;
}

int FiProfile_GetProfile(const char* user, const char* password, const char* fi_url, const char* fi_id,
                         const char* fi_organization, const char* last_update, const char* app_id,
                         const char* app_version, const char* ofx_version) {
  SetSignOn(fiProfile1, user, password, fi_url, fi_id, fi_organization, last_update, app_id, app_version,
            ofx_version);
  return fiProfile1.GetProfile();
}

int Account_GetInfo(const char* user, const char* password, const char* fi_url, const char* fi_id,
                    const char* fi_organization, const char* last_update, const char* app_id,
                    const char* app_version, const char* ofx_version) {
  SetSignOn(account1, user, password, fi_url, fi_id, fi_organization, last_update, app_id, app_version, ofx_version);
  return account1.GetInfo();
}

int BankStatement_GetStatement(const char* user, const char* password, const char* account_id, const char* bank_id,
                               const char* fi_url, const char* fi_id, const char* fi_organization,
                               const char* start_date, const char* end_date, int account_type, const char* app_id,
                               const char* app_version, const char* ofx_version) {
  MyBankStatement& w = bankStatement1;
  w.SetOFXUser(user);
  w.SetOFXPassword(password);
  w.SetAccountId(account_id);
  w.SetBankId(bank_id);
  w.SetFIUrl(fi_url);
  w.SetFIId(fi_id);
  w.SetFIOrganization(fi_organization);
  w.SetStartDate(start_date);
  w.SetEndDate(end_date);
  w.SetAccountType(account_type);
  w.SetOFXAppId(app_id);
  w.SetOFXAppVersion(app_version);
  w.SetOFXVersion(ofx_version);
  return w.GetStatement();
}

int CCStatement_GetStatement(const char* user, const char* password, const char* card_number, const char* fi_url,
                             const char* fi_id, const char* fi_organization, const char* start_date,
                             const char* end_date, const char* app_id, const char* app_version,
                             const char* ofx_version) {
  MyCCStatement& w = ccStatement1;
  w.SetOFXUser(user);
  w.SetOFXPassword(password);
  w.SetCardNumber(card_number);
  w.SetFIUrl(fi_url);
  w.SetFIId(fi_id);
  w.SetFIOrganization(fi_organization);
  w.SetStartDate(start_date);
  w.SetEndDate(end_date);
  w.SetOFXAppId(app_id);
  w.SetOFXAppVersion(app_version);
  w.SetOFXVersion(ofx_version);
  return w.GetStatement();
}

int InvStatement_GetStatement(const char* user, const char* password, const char* account_id, const char* fi_url,
                              const char* fi_id, const char* fi_organization, const char* broker_id,
                              const char* start_date, const char* end_date, const char* app_id,
                              const char* app_version, const char* ofx_version) {
  MyInvStatement& w = invStatement1;
  w.SetOFXUser(user);
  w.SetOFXPassword(password);
  w.SetAccountId(account_id);
  w.SetFIUrl(fi_url);
  w.SetFIId(fi_id);
  w.SetFIOrganization(fi_organization);
  w.SetBrokerId(broker_id);
  w.SetStartDate(start_date);
  w.SetEndDate(end_date);
  w.SetOFXAppId(app_id);
  w.SetOFXAppVersion(app_version);
  w.SetOFXVersion(ofx_version);
  return w.GetStatement();
}

int BillPayment_PayBill(const char* user, const char* password, const char* from_account_id,
                        const char* from_bank_id, const char* fi_url, const char* fi_id, const char* fi_organization,
                        int from_account_type, const char* app_id, const char* app_version, const char* payee_name,
                        const char* payee_addr1, const char* payee_addr2, const char* payee_addr3,
                        const char* payee_city, const char* payee_state, const char* payee_postal_code,
                        const char* payee_country, const char* payee_phone, const char* payee_account,
                        const char* amount, const char* date_due, const char* memo, const char* payee_list_id,
                        const char* ofx_version) {
  SetBill(user, password, from_account_id, from_bank_id, fi_url, fi_id, fi_organization, from_account_type, app_id,
          app_version, payee_name, payee_addr1, payee_addr2, payee_addr3, payee_city, payee_state, payee_postal_code,
          payee_country, payee_phone, payee_account, amount, date_due, memo);
  billPayment1.SetPayeeListId(payee_list_id);
  billPayment1.SetOFXVersion(ofx_version);
  return billPayment1.PayBill();
}

int BillPayment_ModifyBill(const char* user, const char* password, const char* from_account_id,
                           const char* from_bank_id, const char* fi_url, const char* fi_id,
                           const char* fi_organization, int from_account_type, const char* app_id,
                           const char* app_version, const char* payee_name, const char* payee_addr1,
                           const char* payee_addr2, const char* payee_addr3, const char* payee_city,
                           const char* payee_state, const char* payee_postal_code, const char* payee_country,
                           const char* payee_phone, const char* payee_account, const char* amount,
                           const char* date_due, const char* memo, const char* payment_id, const char* payee_list_id,
                           const char* ofx_version) {
  SetBill(user, password, from_account_id, from_bank_id, fi_url, fi_id, fi_organization, from_account_type, app_id,
          app_version, payee_name, payee_addr1, payee_addr2, payee_addr3, payee_city, payee_state, payee_postal_code,
          payee_country, payee_phone, payee_account, amount, date_due, memo);
  billPayment1.SetPayeeListId(payee_list_id);
  billPayment1.SetOFXVersion(ofx_version);
  return billPayment1.ModifyPayment(payment_id);
}

int BillPayment_SyncPayments(const char* user, const char* password, const char* from_account_id,
                             const char* from_bank_id, const char* fi_url, const char* fi_id,
                             const char* fi_organization, int from_account_type, const char* app_id,
                             const char* app_version, const char* token, const char* ofx_version) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  SetPaymentFrom(from_account_id, from_bank_id, from_account_type);
  billPayment1.SetOFXVersion(ofx_version);
  return billPayment1.SynchronizePayments(token);
}

int BillPayment_CancelPayment(const char* user, const char* password, const char* fi_url, const char* fi_id,
                              const char* fi_organization, const char* app_id, const char* app_version,
                              const char* payment_id, const char* ofx_version) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  billPayment1.SetOFXVersion(ofx_version);
  return billPayment1.CancelPayment(payment_id);
}

int BillPayment_SyncPayees(const char* user, const char* password, const char* fi_url, const char* fi_id,
                           const char* fi_organization, const char* app_id, const char* app_version,
                           const char* token, const char* ofx_version) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  billPayment1.SetOFXVersion(ofx_version);
  return billPayment1.SynchronizePayees(token);
}

int BillPayment_AddPayee(const char* user, const char* password, const char* fi_url, const char* fi_id,
                         const char* fi_organization, const char* app_id, const char* app_version,
                         const char* payee_name, const char* payee_addr1, const char* payee_addr2,
                         const char* payee_addr3, const char* payee_city, const char* payee_state,
                         const char* payee_postal_code, const char* payee_country, const char* payee_phone,
                         const char* ofx_version, const char* payee_account) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  SetPayeeAddress(payee_name, payee_addr1, payee_addr2, payee_addr3, payee_city, payee_state, payee_postal_code,
                  payee_country, payee_phone);
  billPayment1.SetOFXVersion(ofx_version);
  billPayment1.SetPayeeAccount(payee_account);
  return billPayment1.AddPayee();
}

int BillPayment_DeletePayee(const char* user, const char* password, const char* fi_url, const char* fi_id,
                            const char* fi_organization, const char* app_id, const char* app_version,
                            const char* payee_list_id, const char* ofx_version) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  billPayment1.SetOFXVersion(ofx_version);
  return billPayment1.DeletePayee(payee_list_id);
}

int BillPayment_ModifyPayee(const char* user, const char* password, const char* fi_url, const char* fi_id,
                            const char* fi_organization, const char* app_id, const char* app_version,
                            const char* payee_list_id, const char* payee_name, const char* payee_addr1,
                            const char* payee_addr2, const char* payee_addr3, const char* payee_city,
                            const char* payee_state, const char* payee_postal_code, const char* payee_country,
                            const char* payee_phone, const char* ofx_version, const char* payee_account) {
  SetPaymentSignOn(user, password, fi_url, fi_id, fi_organization, app_id, app_version);
  SetPayeeAddress(payee_name, payee_addr1, payee_addr2, payee_addr3, payee_city, payee_state, payee_postal_code,
                  payee_country, payee_phone);
  billPayment1.SetOFXVersion(ofx_version);
  billPayment1.SetPayeeAccount(payee_account);
  return billPayment1.ModifyPayee(payee_list_id);
}

#define ORVELAN_DEFINE_FACADE_OBJECT(prefix, global)                          \
  const char* prefix##_Config(const char* text) { return global.Config(text); } \
  const char* prefix##_GetLastError2(void) { return global.GetLastError(); }
ORVELAN_FACADE_OBJECTS(ORVELAN_DEFINE_FACADE_OBJECT)

int BankStatement_ReadOFXDataFile(const char* file) { return bankStatement1.ReadOFXDataFile(file); }
int CCStatement_ReadOFXDataFile(const char* file) { return ccStatement1.ReadOFXDataFile(file); }
int InvStatement_ReadOFXDataFile(const char* file) { return invStatement1.ReadOFXDataFile(file); }

#define ORVELAN_DEFINE_FACADE_RESULT(type, function, global, getter) \
  type function(void) { return global.getter(); }
#define ORVELAN_DEFINE_FACADE_INDEXED_RESULT(type, function, global, getter) \
  type function(int index) { return global.getter(index); }
ORVELAN_FACADE_RESULTS(ORVELAN_DEFINE_FACADE_RESULT)
ORVELAN_FACADE_INDEXED_RESULTS(ORVELAN_DEFINE_FACADE_INDEXED_RESULT)
