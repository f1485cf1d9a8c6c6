#ifndef ORVELAN_HPP
#define ORVELAN_HPP

/**
 * @file
 * Named C++ wrappers over the C interface of orvelan.h: one class per
 * component, with a named accessor per property, a named member per method and
 * an overridable event method per event.
 * @code
 *   class MyStatement : public BankStatement {
 *    public:
 *     int FireError(BankStatementErrorEventParams* e) override {
 *       std::fprintf(stderr, "%d %s\n", e->ErrorCode, e->Description);
 *       return 0;
 *     }
 *   };
 *   MyStatement st;
 *   st.SetFIUrl("https://ofx.example.com/ofx");
 *   ...
 *   if (st.GetStatement() != 0) std::fprintf(stderr, "%s\n", st.GetLastError());
 *   for (int i = 0; i < st.GetTxCount(); ++i) std::puts(st.GetTxAmount(i));
 * @endcode
 * Each wrapper owns one component from X_Create to X_Destroy and turns every
 * call into X_Get, X_Set or X_Do with the component's id; it cannot be copied.
 * Results follow the C interface: methods and setters return 0 or an error code
 * (the text through GetLastError()), texts belong to the component and stay
 * valid until the next call that changes the same property. Config() returns
 * the answer text, not the code: read GetLastError() to tell a failure from an
 * empty answer. Event methods run synchronously inside the call that raised
 * them and return 0 by default; the default certificate decision is the
 * library's own verification. Properties without an accessor stay reachable
 * through the X_ functions with the protected component_.
 *
 * Threads: distinct objects may be used from different threads at once; one
 * object must be used from one thread at a time. Event methods run on the
 * thread that made the call; library initialisation is safe from any thread.
 * The facade functions share one set of global objects and are for one thread
 * only.
 *
 * The single-instance facade of orvelan.h runs on the six global objects
 * declared at the end. THE FACADE ACCEPTS EVERY SERVER CERTIFICATE, however it
 * fails verification: it is for sandboxes and tests, never for a real
 * institution. Use a wrapper (or the C interface) there.
 *
 * Needs only orvelan.h and C++17; link with -lorvelan.
 */

#include "orvelan.h"

/* The four records of the events every component raises; fields in the order
 * of the event's parameters. Texts belong to the component and live as long
 * as the event method runs. */
#define ORVELAN_EVENT_RECORDS(C)                                                           \
  struct C##ConnectionStatusEventParams {                                                  \
    const char* ConnectionEvent;                                                           \
    int StatusCode;                                                                        \
    const char* Description;                                                               \
    int reserved;                                                                          \
  };                                                                                       \
  struct C##ErrorEventParams {                                                             \
    int ErrorCode;                                                                         \
    const char* Description;                                                               \
    int reserved;                                                                          \
  };                                                                                       \
  /* Accept starts as the library's verdict (1 when the certificate verified);            \
     the value left there decides. */                                                     \
  struct C##SSLServerAuthenticationEventParams {                                           \
    const char* CertEncoded;                                                               \
    const char* CertSubject;                                                               \
    const char* CertIssuer;                                                                \
    const char* Status;                                                                    \
    int Accept;                                                                            \
    int lenCertEncoded;                                                                    \
    int reserved;                                                                          \
  };                                                                                       \
  struct C##SSLStatusEventParams {                                                         \
    const char* Message;                                                                   \
    int reserved;                                                                          \
  };

/* A wrapper's constructor and event methods, in virtual-slot order; a
 * component's own events follow, then ORVELAN_WRAPPER_COMMON. */
#define ORVELAN_WRAPPER_EVENTS(C)                                                          \
 public:                                                                                   \
  /* The text is handed to X_Create, which ignores it. */                                  \
  explicit C(const char* text = nullptr);                                                  \
  C(const C&) = delete;                                                                    \
  C& operator=(const C&) = delete;                                                         \
  virtual int FireConnectionStatus(C##ConnectionStatusEventParams* e);                     \
  virtual int FireError(C##ErrorEventParams* e);                                           \
  virtual int FireSSLServerAuthentication(C##SSLServerAuthenticationEventParams* e);       \
  virtual int FireSSLStatus(C##SSLStatusEventParams* e);

/* The rest of every wrapper. Event ids above 10000 reach the wide sink with
 * the offset removed; C##EventSink is the callback given to X_Create. */
#define ORVELAN_WRAPPER_COMMON(C)                                                          \
  virtual int C##EventSinkW(int event_id, int param_count, void** params, int* lengths);   \
  virtual ~C();                                                                            \
  const char* GetLastError();                                                              \
  const char* Config(const char* text);                                                    \
  static int C##EventSink(void* object, int event_id, int param_count, void** params,      \
                          int* lengths);                                                   \
                                                                                           \
 protected:                                                                                \
  void* component_;                                                                        \
                                                                                           \
 public:

/* Member tables: one row X(C, kind, Name, id) per accessor or method. The kind
 * gives the member's form:
 *   GetText     const char* GetName()        GetTextAt  const char* GetName(int index)
 *   GetInt      int GetName()                GetIntAt   int GetName(int index)
 *   GetBool     bool GetName()               GetBoolAt  bool GetName(int index)
 *   SetText     int SetName(const char*)     SetInt     int SetName(int)
 *   SetTextAt   int SetName(int index, const char*)
 *   Method      int Name()                   MethodText int Name(const char* text)
 * An index outside the list reads "" (or 0) with last error 432. */
#define ORVELAN_DECLARE_MEMBER(C, kind, name, id) ORVELAN_DECLARE_##kind(name)
#define ORVELAN_DECLARE_GetText(name) const char* Get##name();
#define ORVELAN_DECLARE_GetTextAt(name) const char* Get##name(int index);
#define ORVELAN_DECLARE_GetInt(name) int Get##name();
#define ORVELAN_DECLARE_GetIntAt(name) int Get##name(int index);
#define ORVELAN_DECLARE_GetBool(name) bool Get##name();
#define ORVELAN_DECLARE_GetBoolAt(name) bool Get##name(int index);
#define ORVELAN_DECLARE_SetText(name) int Set##name(const char* value);
#define ORVELAN_DECLARE_SetTextAt(name) int Set##name(int index, const char* value);
#define ORVELAN_DECLARE_SetInt(name) int Set##name(int value);
#define ORVELAN_DECLARE_Method(name) int name();
#define ORVELAN_DECLARE_MethodText(name) int name(const char* text);

/* The sign-on properties every OFX wrapper sets; P is the id prefix. */
#define ORVELAN_SIGNON_MEMBERS(X, C, P)                \
  X(C, SetText, FIId, P##_PROP_FIID)                   \
  X(C, SetText, FIOrganization, P##_PROP_FIORGANIZATION) \
  X(C, SetText, FIUrl, P##_PROP_FIURL)                 \
  X(C, SetText, OFXAppId, P##_PROP_OFXAPPID)           \
  X(C, SetText, OFXAppVersion, P##_PROP_OFXAPPVERSION) \
  X(C, SetText, OFXPassword, P##_PROP_OFXPASSWORD)     \
  X(C, SetText, OFXUser, P##_PROP_OFXUSER)             \
  X(C, SetText, OFXVersion, P##_PROP_OFXVERSION)

#define ORVELAN_ACCOUNT_MEMBERS(X, C)                          \
  ORVELAN_SIGNON_MEMBERS(X, C, ACCOUNT)                        \
  X(C, SetText, LastUpdate, ACCOUNT_PROP_LASTUPDATE)           \
  X(C, GetInt, AccCount, ACCOUNT_PROP_ACCCOUNT)                \
  X(C, GetTextAt, AccAggregate, ACCOUNT_PROP_ACCAGGREGATE)     \
  X(C, GetTextAt, AccBankId, ACCOUNT_PROP_ACCBANKID)           \
  X(C, GetTextAt, AccDescription, ACCOUNT_PROP_ACCDESCRIPTION) \
  X(C, GetTextAt, AccId, ACCOUNT_PROP_ACCID)                   \
  X(C, GetTextAt, AccServiceType, ACCOUNT_PROP_ACCSERVICETYPE) \
  X(C, GetTextAt, AccType, ACCOUNT_PROP_ACCTYPE)               \
  X(C, Method, GetInfo, ACCOUNT_METHOD_GETINFO)                \
  X(C, Method, Reset, ACCOUNT_METHOD_RESET)

#define ORVELAN_BANKSTATEMENT_MEMBERS(X, C)                                \
  ORVELAN_SIGNON_MEMBERS(X, C, BANKSTATEMENT)                              \
  X(C, GetText, AccountId, BANKSTATEMENT_PROP_ACCOUNTID)                   \
  X(C, SetText, AccountId, BANKSTATEMENT_PROP_ACCOUNTID)                   \
  X(C, SetInt, AccountType, BANKSTATEMENT_PROP_ACCOUNTTYPE)                \
  X(C, SetText, BankId, BANKSTATEMENT_PROP_BANKID)                         \
  X(C, SetText, EndDate, BANKSTATEMENT_PROP_ENDDATE)                       \
  X(C, GetText, LedgerBalance, BANKSTATEMENT_PROP_LEDGERBALANCE)           \
  X(C, SetText, StartDate, BANKSTATEMENT_PROP_STARTDATE)                   \
  X(C, GetInt, TxCount, BANKSTATEMENT_PROP_TXCOUNT)                        \
  X(C, GetTextAt, TxAmount, BANKSTATEMENT_PROP_TXAMOUNT)                   \
  X(C, GetTextAt, TxCheckNumber, BANKSTATEMENT_PROP_TXCHECKNUMBER)         \
  X(C, GetTextAt, TxDatePosted, BANKSTATEMENT_PROP_TXDATEPOSTED)           \
  X(C, GetTextAt, TxFITID, BANKSTATEMENT_PROP_TXFITID)                     \
  X(C, GetTextAt, TxMemo, BANKSTATEMENT_PROP_TXMEMO)                       \
  X(C, GetTextAt, TxPayeeName, BANKSTATEMENT_PROP_TXPAYEENAME)             \
  X(C, GetTextAt, TxTypeDescription, BANKSTATEMENT_PROP_TXTYPEDESCRIPTION) \
  X(C, Method, GetStatement, BANKSTATEMENT_METHOD_GETSTATEMENT)            \
  X(C, MethodText, ReadOFXDataFile, BANKSTATEMENT_METHOD_READOFXDATAFILE)  \
  X(C, Method, Reset, BANKSTATEMENT_METHOD_RESET)

#define ORVELAN_CCSTATEMENT_MEMBERS(X, C)                                \
  ORVELAN_SIGNON_MEMBERS(X, C, CCSTATEMENT)                              \
  X(C, GetText, CardNumber, CCSTATEMENT_PROP_CARDNUMBER)                 \
  X(C, SetText, CardNumber, CCSTATEMENT_PROP_CARDNUMBER)                 \
  X(C, SetText, EndDate, CCSTATEMENT_PROP_ENDDATE)                       \
  X(C, GetText, LedgerBalance, CCSTATEMENT_PROP_LEDGERBALANCE)           \
  X(C, SetText, StartDate, CCSTATEMENT_PROP_STARTDATE)                   \
  X(C, GetInt, TxCount, CCSTATEMENT_PROP_TXCOUNT)                        \
  X(C, GetTextAt, TxAmount, CCSTATEMENT_PROP_TXAMOUNT)                   \
  X(C, GetTextAt, TxDatePosted, CCSTATEMENT_PROP_TXDATEPOSTED)           \
  X(C, GetTextAt, TxFITID, CCSTATEMENT_PROP_TXFITID)                     \
  X(C, GetTextAt, TxMemo, CCSTATEMENT_PROP_TXMEMO)                       \
  X(C, GetTextAt, TxPayeeName, CCSTATEMENT_PROP_TXPAYEENAME)             \
  X(C, GetTextAt, TxTypeDescription, CCSTATEMENT_PROP_TXTYPEDESCRIPTION) \
  X(C, Method, GetStatement, CCSTATEMENT_METHOD_GETSTATEMENT)            \
  X(C, MethodText, ReadOFXDataFile, CCSTATEMENT_METHOD_READOFXDATAFILE)  \
  X(C, Method, Reset, CCSTATEMENT_METHOD_RESET)

#define ORVELAN_FIPROFILE_MEMBERS(X, C)                                      \
  ORVELAN_SIGNON_MEMBERS(X, C, FIPROFILE)                                    \
  X(C, SetText, LastUpdate, FIPROFILE_PROP_LASTUPDATE)                       \
  X(C, GetInt, MessageSetCount, FIPROFILE_PROP_MESSAGESETCOUNT)              \
  X(C, GetTextAt, MessageSetAggregate, FIPROFILE_PROP_MESSAGESETAGGREGATE)   \
  X(C, GetTextAt, MessageSetName, FIPROFILE_PROP_MESSAGESETNAME)             \
  X(C, GetTextAt, MessageSetURL, FIPROFILE_PROP_MESSAGESETURL)               \
  X(C, GetBoolAt, SignOnClientUIdReq, FIPROFILE_PROP_SIGNONCLIENTUIDREQ)     \
  X(C, GetBoolAt, SignOnPINChangeFirst, FIPROFILE_PROP_SIGNONPINCHANGEFIRST) \
  X(C, Method, GetProfile, FIPROFILE_METHOD_GETPROFILE)                      \
  X(C, Method, Reset, FIPROFILE_METHOD_RESET)

#define ORVELAN_INVSTATEMENT_MEMBERS(X, C)                                  \
  ORVELAN_SIGNON_MEMBERS(X, C, INVSTATEMENT)                                \
  X(C, GetText, AccountId, INVSTATEMENT_PROP_ACCOUNTID)                     \
  X(C, SetText, AccountId, INVSTATEMENT_PROP_ACCOUNTID)                     \
  X(C, GetText, AvailableCash, INVSTATEMENT_PROP_AVAILABLECASH)             \
  X(C, SetText, BrokerId, INVSTATEMENT_PROP_BROKERID)                       \
  X(C, SetText, EndDate, INVSTATEMENT_PROP_ENDDATE)                         \
  X(C, SetInt, IncludeBalances, INVSTATEMENT_PROP_INCLUDEBALANCES)          \
  X(C, SetInt, IncludeTransactions, INVSTATEMENT_PROP_INCLUDETRANSACTIONS)  \
  X(C, GetInt, SecCount, INVSTATEMENT_PROP_SECCOUNT)                        \
  X(C, GetTextAt, SecSecurityId, INVSTATEMENT_PROP_SECSECURITYID)           \
  X(C, GetTextAt, SecTicker, INVSTATEMENT_PROP_SECTICKER)                   \
  X(C, SetText, StartDate, INVSTATEMENT_PROP_STARTDATE)                     \
  X(C, GetInt, TxCount, INVSTATEMENT_PROP_TXCOUNT)                          \
  X(C, GetTextAt, TxAggregate, INVSTATEMENT_PROP_TXAGGREGATE)               \
  X(C, GetTextAt, TxDate, INVSTATEMENT_PROP_TXDATE)                         \
  X(C, GetTextAt, TxFITID, INVSTATEMENT_PROP_TXFITID)                       \
  X(C, GetTextAt, TxMemo, INVSTATEMENT_PROP_TXMEMO)                         \
  X(C, GetTextAt, TxName, INVSTATEMENT_PROP_TXNAME)                         \
  X(C, GetTextAt, TxSecurityId, INVSTATEMENT_PROP_TXSECURITYID)             \
  X(C, GetTextAt, TxSubAccountFund, INVSTATEMENT_PROP_TXSUBACCOUNTFUND)     \
  X(C, GetTextAt, TxSubAccountSec, INVSTATEMENT_PROP_TXSUBACCOUNTSEC)       \
  X(C, GetTextAt, TxTotal, INVSTATEMENT_PROP_TXTOTAL)                       \
  X(C, GetIntAt, TxType, INVSTATEMENT_PROP_TXTYPE)                          \
  X(C, GetTextAt, TxUnitPrice, INVSTATEMENT_PROP_TXUNITPRICE)               \
  X(C, GetTextAt, TxUnits, INVSTATEMENT_PROP_TXUNITS)                       \
  X(C, Method, GetStatement, INVSTATEMENT_METHOD_GETSTATEMENT)              \
  X(C, MethodText, ReadOFXDataFile, INVSTATEMENT_METHOD_READOFXDATAFILE)    \
  X(C, Method, Reset, INVSTATEMENT_METHOD_RESET)

#define ORVELAN_BILLPAYMENT_MEMBERS(X, C)                                           \
  ORVELAN_SIGNON_MEMBERS(X, C, BILLPAYMENT)                                         \
  X(C, SetText, PayeeAccount, BILLPAYMENT_PROP_PAYEEACCOUNT)                        \
  X(C, SetText, PayeeAddr1, BILLPAYMENT_PROP_PAYEEADDR1)                            \
  X(C, SetText, PayeeAddr2, BILLPAYMENT_PROP_PAYEEADDR2)                            \
  X(C, SetText, PayeeAddr3, BILLPAYMENT_PROP_PAYEEADDR3)                            \
  X(C, SetText, PayeeCity, BILLPAYMENT_PROP_PAYEECITY)                              \
  X(C, SetText, PayeeCountry, BILLPAYMENT_PROP_PAYEECOUNTRY)                        \
  X(C, GetText, PayeeListId, BILLPAYMENT_PROP_PAYEELISTID)                          \
  X(C, SetText, PayeeListId, BILLPAYMENT_PROP_PAYEELISTID)                          \
  X(C, SetText, PayeeName, BILLPAYMENT_PROP_PAYEENAME)                              \
  X(C, SetText, PayeePhone, BILLPAYMENT_PROP_PAYEEPHONE)                            \
  X(C, SetText, PayeePostalCode, BILLPAYMENT_PROP_PAYEEPOSTALCODE)                  \
  X(C, SetText, PayeeState, BILLPAYMENT_PROP_PAYEESTATE)                            \
  X(C, SetText, PaymentAmount, BILLPAYMENT_PROP_PAYMENTAMOUNT)                      \
  X(C, SetText, PaymentDateDue, BILLPAYMENT_PROP_PAYMENTDATEDUE)                    \
  X(C, SetText, PaymentFromAccountId, BILLPAYMENT_PROP_PAYMENTFROMACCOUNTID)        \
  X(C, SetInt, PaymentFromAccountType, BILLPAYMENT_PROP_PAYMENTFROMACCOUNTTYPE)     \
  X(C, SetText, PaymentFromBankId, BILLPAYMENT_PROP_PAYMENTFROMBANKID)              \
  X(C, SetText, PaymentMemo, BILLPAYMENT_PROP_PAYMENTMEMO)                          \
  X(C, GetInt, SyncPayeeCount, BILLPAYMENT_PROP_SYNCPAYEECOUNT)                     \
  X(C, GetTextAt, SyncPayeeAccount, BILLPAYMENT_PROP_SYNCPAYEEACCOUNT)              \
  X(C, GetTextAt, SyncPayeeAddr1, BILLPAYMENT_PROP_SYNCPAYEEADDR1)                  \
  X(C, GetTextAt, SyncPayeeAddr2, BILLPAYMENT_PROP_SYNCPAYEEADDR2)                  \
  X(C, GetTextAt, SyncPayeeAddr3, BILLPAYMENT_PROP_SYNCPAYEEADDR3)                  \
  X(C, GetTextAt, SyncPayeeCity, BILLPAYMENT_PROP_SYNCPAYEECITY)                    \
  X(C, GetTextAt, SyncPayeeCountry, BILLPAYMENT_PROP_SYNCPAYEECOUNTRY)              \
  X(C, GetTextAt, SyncPayeeListId, BILLPAYMENT_PROP_SYNCPAYEELISTID)                \
  X(C, GetTextAt, SyncPayeeName, BILLPAYMENT_PROP_SYNCPAYEENAME)                    \
  X(C, GetTextAt, SyncPayeePhone, BILLPAYMENT_PROP_SYNCPAYEEPHONE)                  \
  X(C, GetTextAt, SyncPayeePostalCode, BILLPAYMENT_PROP_SYNCPAYEEPOSTALCODE)        \
  X(C, GetTextAt, SyncPayeeState, BILLPAYMENT_PROP_SYNCPAYEESTATE)                  \
  X(C, GetInt, SyncPaymentCount, BILLPAYMENT_PROP_SYNCPAYMENTCOUNT)                 \
  X(C, GetTextAt, SyncPaymentAmount, BILLPAYMENT_PROP_SYNCPAYMENTAMOUNT)            \
  X(C, GetTextAt, SyncPaymentDateDue, BILLPAYMENT_PROP_SYNCPAYMENTDATEDUE)          \
  X(C, GetTextAt, SyncPaymentId, BILLPAYMENT_PROP_SYNCPAYMENTID)                    \
  X(C, GetTextAt, SyncPaymentMemo, BILLPAYMENT_PROP_SYNCPAYMENTMEMO)                \
  X(C, GetTextAt, SyncPaymentPayeeAccount, BILLPAYMENT_PROP_SYNCPAYMENTPAYEEACCOUNT) \
  X(C, GetTextAt, SyncPaymentPayeeListId, BILLPAYMENT_PROP_SYNCPAYMENTPAYEELISTID)  \
  X(C, GetTextAt, SyncPaymentStatus, BILLPAYMENT_PROP_SYNCPAYMENTSTATUS)            \
  X(C, Method, AddPayee, BILLPAYMENT_METHOD_ADDPAYEE)                               \
  X(C, MethodText, CancelPayment, BILLPAYMENT_METHOD_CANCELPAYMENT)                 \
  X(C, MethodText, DeletePayee, BILLPAYMENT_METHOD_DELETEPAYEE)                     \
  X(C, MethodText, ModifyPayee, BILLPAYMENT_METHOD_MODIFYPAYEE)                     \
  X(C, MethodText, ModifyPayment, BILLPAYMENT_METHOD_MODIFYPAYMENT)                 \
  X(C, Method, PayBill, BILLPAYMENT_METHOD_PAYBILL)                                 \
  X(C, Method, Reset, BILLPAYMENT_METHOD_RESET)                                     \
  X(C, MethodText, SynchronizePayees, BILLPAYMENT_METHOD_SYNCHRONIZEPAYEES)         \
  X(C, MethodText, SynchronizePayments, BILLPAYMENT_METHOD_SYNCHRONIZEPAYMENTS)

#define ORVELAN_BANKTRANSFER_MEMBERS(X, C)                                            \
  ORVELAN_SIGNON_MEMBERS(X, C, BANKTRANSFER)                                          \
  X(C, GetBool, LostSync, BANKTRANSFER_PROP_LOSTSYNC)                                 \
  X(C, GetInt, SyncTransferCount, BANKTRANSFER_PROP_SYNCTRANSFERCOUNT)                \
  X(C, GetTextAt, SyncTransferAmount, BANKTRANSFER_PROP_SYNCTRANSFERAMOUNT)           \
  X(C, GetTextAt, SyncTransferDatePosted, BANKTRANSFER_PROP_SYNCTRANSFERDATEPOSTED)   \
  X(C, GetTextAt, SyncTransferFromAccountId, BANKTRANSFER_PROP_SYNCTRANSFERFROMACCOUNTID) \
  X(C, GetTextAt, SyncTransferId, BANKTRANSFER_PROP_SYNCTRANSFERID)                   \
  X(C, GetTextAt, SyncTransferStatus, BANKTRANSFER_PROP_SYNCTRANSFERSTATUS)           \
  X(C, GetTextAt, SyncTransferToAccountId, BANKTRANSFER_PROP_SYNCTRANSFERTOACCOUNTID) \
  X(C, GetTextAt, SyncTransferType, BANKTRANSFER_PROP_SYNCTRANSFERTYPE)               \
  X(C, SetText, TransferAmount, BANKTRANSFER_PROP_TRANSFERAMOUNT)                     \
  X(C, SetText, TransferDateDue, BANKTRANSFER_PROP_TRANSFERDATEDUE)                   \
  X(C, GetText, TransferDatePosted, BANKTRANSFER_PROP_TRANSFERDATEPOSTED)             \
  X(C, SetText, TransferFromAccountId, BANKTRANSFER_PROP_TRANSFERFROMACCOUNTID)       \
  X(C, SetInt, TransferFromAccountType, BANKTRANSFER_PROP_TRANSFERFROMACCOUNTTYPE)    \
  X(C, SetText, TransferFromBankId, BANKTRANSFER_PROP_TRANSFERFROMBANKID)             \
  X(C, GetText, TransferId, BANKTRANSFER_PROP_TRANSFERID)                             \
  X(C, GetText, TransferStatus, BANKTRANSFER_PROP_TRANSFERSTATUS)                     \
  X(C, SetText, TransferToAccountId, BANKTRANSFER_PROP_TRANSFERTOACCOUNTID)           \
  X(C, SetInt, TransferToAccountType, BANKTRANSFER_PROP_TRANSFERTOACCOUNTTYPE)        \
  X(C, SetText, TransferToBankId, BANKTRANSFER_PROP_TRANSFERTOBANKID)                 \
  X(C, MethodText, CancelTransfer, BANKTRANSFER_METHOD_CANCELTRANSFER)                \
  X(C, MethodText, ModifyTransfer, BANKTRANSFER_METHOD_MODIFYTRANSFER)                \
  X(C, Method, Reset, BANKTRANSFER_METHOD_RESET)                                      \
  X(C, MethodText, SynchronizeTransfers, BANKTRANSFER_METHOD_SYNCHRONIZETRANSFERS)    \
  X(C, Method, TransferFunds, BANKTRANSFER_METHOD_TRANSFERFUNDS)

#define ORVELAN_LOANSTATEMENT_MEMBERS(X, C)                                    \
  ORVELAN_SIGNON_MEMBERS(X, C, LOANSTATEMENT)                                  \
  X(C, GetText, AccountId, LOANSTATEMENT_PROP_ACCOUNTID)                       \
  X(C, SetText, AccountId, LOANSTATEMENT_PROP_ACCOUNTID)                       \
  X(C, SetInt, AccountType, LOANSTATEMENT_PROP_ACCOUNTTYPE)                    \
  X(C, SetText, EndDate, LOANSTATEMENT_PROP_ENDDATE)                           \
  X(C, GetText, PrincipalBalance, LOANSTATEMENT_PROP_PRINCIPALBALANCE)         \
  X(C, SetText, StartDate, LOANSTATEMENT_PROP_STARTDATE)                       \
  X(C, GetInt, TxCount, LOANSTATEMENT_PROP_TXCOUNT)                            \
  X(C, GetTextAt, TxAmount, LOANSTATEMENT_PROP_TXAMOUNT)                       \
  X(C, GetTextAt, TxDatePosted, LOANSTATEMENT_PROP_TXDATEPOSTED)               \
  X(C, GetTextAt, TxFITID, LOANSTATEMENT_PROP_TXFITID)                         \
  X(C, GetTextAt, TxInterestAmount, LOANSTATEMENT_PROP_TXINTERESTAMOUNT)       \
  X(C, GetTextAt, TxMemo, LOANSTATEMENT_PROP_TXMEMO)                           \
  X(C, GetTextAt, TxPayeeName, LOANSTATEMENT_PROP_TXPAYEENAME)                 \
  X(C, GetTextAt, TxPrincipalAmount, LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT)     \
  X(C, GetTextAt, TxTypeDescription, LOANSTATEMENT_PROP_TXTYPEDESCRIPTION)     \
  X(C, Method, GetStatement, LOANSTATEMENT_METHOD_GETSTATEMENT)                \
  X(C, MethodText, ReadOFXDataFile, LOANSTATEMENT_METHOD_READOFXDATAFILE)      \
  X(C, Method, Reset, LOANSTATEMENT_METHOD_RESET)

#define ORVELAN_OFXAGGREGATE_MEMBERS(X, C)                   \
  X(C, GetText, Aggregate, OFXAGGREGATE_PROP_AGGREGATE)      \
  X(C, SetText, Aggregate, OFXAGGREGATE_PROP_AGGREGATE)      \
  X(C, GetInt, ChildCount, OFXAGGREGATE_PROP_CHILDCOUNT)     \
  X(C, GetTextAt, ChildName, OFXAGGREGATE_PROP_CHILDNAME)    \
  X(C, GetTextAt, ChildText, OFXAGGREGATE_PROP_CHILDTEXT)    \
  X(C, GetText, ElementName, OFXAGGREGATE_PROP_ELEMENTNAME)  \
  X(C, GetText, ElementPath, OFXAGGREGATE_PROP_ELEMENTPATH)  \
  X(C, SetText, ElementPath, OFXAGGREGATE_PROP_ELEMENTPATH)  \
  X(C, GetText, ElementText, OFXAGGREGATE_PROP_ELEMENTTEXT)

#define ORVELAN_OFXBATCH_MEMBERS(X, C)                                             \
  X(C, SetText, FIId, OFXBATCH_PROP_FIID)                                          \
  X(C, SetText, FIOrganization, OFXBATCH_PROP_FIORGANIZATION)                      \
  X(C, SetText, FIUrl, OFXBATCH_PROP_FIURL)                                        \
  X(C, SetText, OFXAppId, OFXBATCH_PROP_OFXAPPID)                                  \
  X(C, SetText, OFXAppVersion, OFXBATCH_PROP_OFXAPPVERSION)                        \
  X(C, SetText, OFXPassword, OFXBATCH_PROP_OFXPASSWORD)                            \
  X(C, SetText, OFXUser, OFXBATCH_PROP_OFXUSER)                                    \
  X(C, GetInt, OFXBatchItemCount, OFXBATCH_PROP_OFXBATCHITEMCOUNT)                 \
  X(C, SetInt, OFXBatchItemCount, OFXBATCH_PROP_OFXBATCHITEMCOUNT)                 \
  X(C, GetTextAt, OFXBatchItemRequest, OFXBATCH_PROP_OFXBATCHITEMREQUEST)          \
  X(C, SetTextAt, OFXBatchItemRequest, OFXBATCH_PROP_OFXBATCHITEMREQUEST)          \
  X(C, GetTextAt, OFXBatchItemRequestType, OFXBATCH_PROP_OFXBATCHITEMREQUESTTYPE)  \
  X(C, GetTextAt, OFXBatchItemRequestUId, OFXBATCH_PROP_OFXBATCHITEMREQUESTUID)    \
  X(C, GetTextAt, OFXBatchItemResponse, OFXBATCH_PROP_OFXBATCHITEMRESPONSE)        \
  X(C, SetInt, ProxyAuthScheme, OFXBATCH_PROP_PROXYAUTHSCHEME)                     \
  X(C, SetText, ProxyPassword, OFXBATCH_PROP_PROXYPASSWORD)                        \
  X(C, SetInt, ProxyPort, OFXBATCH_PROP_PROXYPORT)                                 \
  X(C, SetText, ProxyServer, OFXBATCH_PROP_PROXYSERVER)                            \
  X(C, SetInt, ProxySSL, OFXBATCH_PROP_PROXYSSL)                                   \
  X(C, SetText, ProxyUser, OFXBATCH_PROP_PROXYUSER)                                \
  X(C, Method, PostBatch, OFXBATCH_METHOD_POSTBATCH)                               \
  X(C, Method, Reset, OFXBATCH_METHOD_RESET)

/** @defgroup wrappers C++ wrappers
 * One class per component, its event records and its event methods. A host
 * derives from a wrapper to override the events it wants.
 * @{ */
ORVELAN_EVENT_RECORDS(Account)
ORVELAN_EVENT_RECORDS(BankStatement)
ORVELAN_EVENT_RECORDS(BankTransfer)
ORVELAN_EVENT_RECORDS(BillPayment)
ORVELAN_EVENT_RECORDS(CCStatement)
ORVELAN_EVENT_RECORDS(FIProfile)
ORVELAN_EVENT_RECORDS(InvStatement)
ORVELAN_EVENT_RECORDS(LoanStatement)
ORVELAN_EVENT_RECORDS(OFXAggregate)
ORVELAN_EVENT_RECORDS(OFXBatch)

/* The records of the money components' own events: one text per parameter,
 * in the event's order. Type is the record's status (ADDED, MODIFIED, ...),
 * Status its processing status. */
struct BankTransferSyncTransfersEventParams {
  const char *Aggregate, *Type, *TransferId, *Amount, *FromAccountId, *ToAccountId, *Status, *DatePosted;
};
struct BillPaymentSyncPayeesEventParams {
  const char *Aggregate, *Type, *PayeeId, *IdScope, *ListId, *Account, *Name, *Addr1, *Addr2, *Addr3, *City,
      *State, *PostalCode, *Country, *Phone;
};
struct BillPaymentSyncPaymentsEventParams {
  const char *Aggregate, *Type, *PaymentId, *PayeeId, *PayeeListId, *PayeeAccount, *PayeeAggregate, *Amount,
      *FromAccountId, *Status, *DateProcessed;
};

class ORVELAN_API Account {
  ORVELAN_WRAPPER_EVENTS(Account)
  ORVELAN_WRAPPER_COMMON(Account)
  ORVELAN_ACCOUNT_MEMBERS(ORVELAN_DECLARE_MEMBER, Account)
};

class ORVELAN_API BankStatement {
  ORVELAN_WRAPPER_EVENTS(BankStatement)
  ORVELAN_WRAPPER_COMMON(BankStatement)
  ORVELAN_BANKSTATEMENT_MEMBERS(ORVELAN_DECLARE_MEMBER, BankStatement)
};

class ORVELAN_API BankTransfer {
  ORVELAN_WRAPPER_EVENTS(BankTransfer)
  virtual int FireSyncTransfers(BankTransferSyncTransfersEventParams* e);
  ORVELAN_WRAPPER_COMMON(BankTransfer)
  ORVELAN_BANKTRANSFER_MEMBERS(ORVELAN_DECLARE_MEMBER, BankTransfer)
};

class ORVELAN_API BillPayment {
  ORVELAN_WRAPPER_EVENTS(BillPayment)
  virtual int FireSyncPayees(BillPaymentSyncPayeesEventParams* e);
  virtual int FireSyncPayments(BillPaymentSyncPaymentsEventParams* e);
  ORVELAN_WRAPPER_COMMON(BillPayment)
  ORVELAN_BILLPAYMENT_MEMBERS(ORVELAN_DECLARE_MEMBER, BillPayment)
};

class ORVELAN_API CCStatement {
  ORVELAN_WRAPPER_EVENTS(CCStatement)
  ORVELAN_WRAPPER_COMMON(CCStatement)
  ORVELAN_CCSTATEMENT_MEMBERS(ORVELAN_DECLARE_MEMBER, CCStatement)
};

class ORVELAN_API FIProfile {
  ORVELAN_WRAPPER_EVENTS(FIProfile)
  ORVELAN_WRAPPER_COMMON(FIProfile)
  ORVELAN_FIPROFILE_MEMBERS(ORVELAN_DECLARE_MEMBER, FIProfile)
};

class ORVELAN_API InvStatement {
  ORVELAN_WRAPPER_EVENTS(InvStatement)
  ORVELAN_WRAPPER_COMMON(InvStatement)
  ORVELAN_INVSTATEMENT_MEMBERS(ORVELAN_DECLARE_MEMBER, InvStatement)
};

class ORVELAN_API LoanStatement {
  ORVELAN_WRAPPER_EVENTS(LoanStatement)
  ORVELAN_WRAPPER_COMMON(LoanStatement)
  ORVELAN_LOANSTATEMENT_MEMBERS(ORVELAN_DECLARE_MEMBER, LoanStatement)
};

class ORVELAN_API OFXAggregate {
  ORVELAN_WRAPPER_EVENTS(OFXAggregate)
  ORVELAN_WRAPPER_COMMON(OFXAggregate)
  ORVELAN_OFXAGGREGATE_MEMBERS(ORVELAN_DECLARE_MEMBER, OFXAggregate)
  // True when the path (in the document's path syntax) leads to an element.
  bool PathExists(const char* path);
};

class ORVELAN_API OFXBatch {
  ORVELAN_WRAPPER_EVENTS(OFXBatch)
  ORVELAN_WRAPPER_COMMON(OFXBatch)
  ORVELAN_OFXBATCH_MEMBERS(ORVELAN_DECLARE_MEMBER, OFXBatch)
};

/** @} */

/** @addtogroup facade
 * @{ */
/* The facade's objects. Each My class accepts every server certificate, so
 * the facade works against a sandbox with a self-signed certificate and must
 * never be pointed at a real institution. */
#define ORVELAN_FACADE_CLASS(My, C)                                                \
  class ORVELAN_API My : public C {                                                \
   public:                                                                         \
    explicit My(const char* text = nullptr) : C(text) {}                           \
    int FireSSLServerAuthentication(C##SSLServerAuthenticationEventParams* e) override; \
  };
ORVELAN_FACADE_CLASS(MyFiProfile, FIProfile)
ORVELAN_FACADE_CLASS(MyAccount, Account)
ORVELAN_FACADE_CLASS(MyBankStatement, BankStatement)
ORVELAN_FACADE_CLASS(MyCCStatement, CCStatement)
ORVELAN_FACADE_CLASS(MyInvStatement, InvStatement)
ORVELAN_FACADE_CLASS(MyBillPayment, BillPayment)
#undef ORVELAN_FACADE_CLASS

/* Built when the library is loaded, in this order, destroyed when it is
 * unloaded; shared by the whole process (serialise calls across threads). */
extern ORVELAN_API MyFiProfile fiProfile1;
extern ORVELAN_API MyAccount account1;
extern ORVELAN_API MyBankStatement bankStatement1;
extern ORVELAN_API MyCCStatement ccStatement1;
extern ORVELAN_API MyInvStatement invStatement1;
extern ORVELAN_API MyBillPayment billPayment1;
/** @} */

#endif /* ORVELAN_HPP */
