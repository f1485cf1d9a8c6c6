#ifndef ORVELAN_H
#define ORVELAN_H

/*
 * liborvelan.so.3: an Open Financial Exchange (OFX) client library.
 *
 * A host drives ten components through the same ten functions each:
 *
 *   void* st = BankStatement_Create(on_event, my_data, 0);
 *   BankStatement_Set(st, BANKSTATEMENT_PROP_OFXVERSION, 0, "211", 0);
 *   if (BankStatement_Do(st, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, 0, 0) != 0)
 *     fprintf(stderr, "%d %s\n", BankStatement_GetLastErrorCode(st), BankStatement_GetLastError(st));
 *   BankStatement_Destroy(st);
 *
 * Values cross the interface by kind:
 *   text     X_Set: value points to NUL-terminated bytes (null = empty), length ignored.
 *            X_Get: a pointer owned by the component, valid until the next call that
 *            changes that property.
 *   integer  passed and returned in the pointer-sized value itself (cut to 32 bits on
 *            the way in, sign-extended on the way out); booleans are 0 or 1.
 *   bytes    X_Set: value and length. X_Get: the pointer; *length receives the count
 *            (or the error code, with a null result, when the read fails).
 *
 * Every function that can fail returns 0 for success, a positive error code, or -1
 * for an unknown setting or an unknown or read-only property. The text of the last
 * error is read with X_GetLastError. Events reach the host through the callback,
 * synchronously, on the thread that made the call. A component must not be used
 * from two threads at once; different components are independent.
 */

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define ORVELAN_API __attribute__((visibility("default")))
#else
#define ORVELAN_API
#endif

/* The host's event function: user data given to X_Create, the event id, the
 * parameter count, and the parameter and length arrays (see the event ids). */
typedef int (*EventCallback)(void* user_data, int event_id, int param_count, void** params, int* lengths);

/* Reserved property ids of X_Get, the same in every component. */
#define ORVELAN_PROP_VERSION 0    /* text: the version banner */
#define ORVELAN_PROP_CODEPAGE 2010 /* integer: the CodePage setting */
#define ORVELAN_VERSION_BANNER "ORVELAN_VERSION_3_0_3909"

/* Reserved method ids of X_Do, the same in every component. */
#define ORVELAN_METHOD_EXTERNAL_EVENT_LOOP_OFF 2000
#define ORVELAN_METHOD_EXTERNAL_EVENT_LOOP_ON 2001
#define ORVELAN_METHOD_PROCESS_EVENTS 2002

/* Event ids and their parameters (texts are NUL-terminated; integers travel
 * in the pointer-sized slot itself). */
#define ORVELAN_EVENT_CONNECTION_STATUS 1 /* ConnectionEvent, StatusCode, Description */
#define ORVELAN_EVENT_ERROR 2             /* ErrorCode, Description */
#define ORVELAN_EVENT_SSL_SERVER_AUTHENTICATION 3 /* CertEncoded (lengths[0] bytes), CertSubject,
                                                     CertIssuer, Status, Accept (in/out) */
#define ORVELAN_EVENT_SSL_STATUS 4        /* Message */
#define ORVELAN_EVENT_WAIT_FOR_EVENTS 2000 /* timeout in ms (in/out; -1 back = interrupt) */
#define ORVELAN_EVENT_WATCH_SOCKET 2001    /* socket, event mask, handle (out) */
#define ORVELAN_EVENT_UNWATCH_SOCKET 2002  /* handle */

/* BankStatement property ids. */
#define BANKSTATEMENT_PROP_ACCOUNTID 1
#define BANKSTATEMENT_PROP_ACCOUNTTYPE 2
#define BANKSTATEMENT_PROP_AVAILABLEBALANCE 3
#define BANKSTATEMENT_PROP_AVAILABLEBALANCEDATE 4
#define BANKSTATEMENT_PROP_BANKID 5
#define BANKSTATEMENT_PROP_CLOSINGINFOCOUNT 6
#define BANKSTATEMENT_PROP_CLOSINGINFOAGGREGATE 7
#define BANKSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE 8
#define BANKSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN 9
#define BANKSTATEMENT_PROP_CLOSINGINFODATECLOSE 10
#define BANKSTATEMENT_PROP_CLOSINGINFODATEEND 11
#define BANKSTATEMENT_PROP_CLOSINGINFODATEOPEN 12
#define BANKSTATEMENT_PROP_CLOSINGINFODATESTART 13
#define BANKSTATEMENT_PROP_CLOSINGINFOFITID 14
#define BANKSTATEMENT_PROP_CLOSINGINFOIMAGEREF 15
#define BANKSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE 16
#define BANKSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS 17
#define BANKSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS 18
#define BANKSTATEMENT_PROP_CLOSINGINFOTOTALFEES 19
#define BANKSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST 20
#define BANKSTATEMENT_PROP_CURRENCYCODE 21
#define BANKSTATEMENT_PROP_ENDDATE 22
#define BANKSTATEMENT_PROP_FIID 23
#define BANKSTATEMENT_PROP_FIORGANIZATION 24
#define BANKSTATEMENT_PROP_FIREWALLAUTODETECT 25
#define BANKSTATEMENT_PROP_FIREWALLTYPE 26
#define BANKSTATEMENT_PROP_FIREWALLHOST 27
#define BANKSTATEMENT_PROP_FIREWALLPASSWORD 28
#define BANKSTATEMENT_PROP_FIREWALLPORT 29
#define BANKSTATEMENT_PROP_FIREWALLUSER 30
#define BANKSTATEMENT_PROP_FIURL 31
#define BANKSTATEMENT_PROP_IMAGEFILE 32
#define BANKSTATEMENT_PROP_INCLUDEIMAGES 33
#define BANKSTATEMENT_PROP_LEDGERBALANCE 34
#define BANKSTATEMENT_PROP_LEDGERBALANCEDATE 35
#define BANKSTATEMENT_PROP_OFXACCESSKEY 36
#define BANKSTATEMENT_PROP_OFXAPPID 37
#define BANKSTATEMENT_PROP_OFXAPPVERSION 38
#define BANKSTATEMENT_PROP_OFXPASSWORD 39
#define BANKSTATEMENT_PROP_OFXREQUEST 40
#define BANKSTATEMENT_PROP_OFXRESPONSE 41
#define BANKSTATEMENT_PROP_OFXUSER 42
#define BANKSTATEMENT_PROP_OFXVERSION 43
#define BANKSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED 44
#define BANKSTATEMENT_PROP_SSLCERTENCODED 45
#define BANKSTATEMENT_PROP_SSLCERTSTORE 46
#define BANKSTATEMENT_PROP_SSLCERTSTOREPASSWORD 47
#define BANKSTATEMENT_PROP_SSLCERTSTORETYPE 48
#define BANKSTATEMENT_PROP_SSLCERTSUBJECT 49
#define BANKSTATEMENT_PROP_SSLSERVERCERTENCODED 50
#define BANKSTATEMENT_PROP_STARTDATE 51
#define BANKSTATEMENT_PROP_TIMEOUT 52
#define BANKSTATEMENT_PROP_TXCOUNT 53
#define BANKSTATEMENT_PROP_TXAGGREGATE 54
#define BANKSTATEMENT_PROP_TXAMOUNT 55
#define BANKSTATEMENT_PROP_TXCHECKNUMBER 56
#define BANKSTATEMENT_PROP_TXDATEINITIATED 57
#define BANKSTATEMENT_PROP_TXDATEPOSTED 58
#define BANKSTATEMENT_PROP_TXFITID 59
#define BANKSTATEMENT_PROP_TXMEMO 60
#define BANKSTATEMENT_PROP_TXPAYEENAME 61
#define BANKSTATEMENT_PROP_TXTYPE 62
#define BANKSTATEMENT_PROP_TXTYPEDESCRIPTION 63
/* BankStatement method ids. */
#define BANKSTATEMENT_METHOD_CONFIG 2
#define BANKSTATEMENT_METHOD_GETCLOSINGINFO 3
#define BANKSTATEMENT_METHOD_GETIMAGE 4
#define BANKSTATEMENT_METHOD_GETSTATEMENT 5
#define BANKSTATEMENT_METHOD_READOFXDATAFILE 6
#define BANKSTATEMENT_METHOD_RESET 7
#define BANKSTATEMENT_METHOD_WRITEOFXDATAFILE 8

/* Account */
ORVELAN_API int Account_StaticInit(void* reserved);
ORVELAN_API int Account_StaticDestroy(void);
ORVELAN_API void* Account_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int Account_Destroy(void* obj);
ORVELAN_API int Account_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* Account_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int Account_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* Account_GetLastError(void* obj);
ORVELAN_API int Account_GetLastErrorCode(void* obj);
ORVELAN_API int Account_Do(void* obj, int method_id, int param_count, void** params, int* lengths);

/* BankStatement */
ORVELAN_API int BankStatement_StaticInit(void* reserved);
ORVELAN_API int BankStatement_StaticDestroy(void);
ORVELAN_API void* BankStatement_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int BankStatement_Destroy(void* obj);
ORVELAN_API int BankStatement_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* BankStatement_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int BankStatement_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* BankStatement_GetLastError(void* obj);
ORVELAN_API int BankStatement_GetLastErrorCode(void* obj);
ORVELAN_API int BankStatement_Do(void* obj, int method_id, int param_count, void** params, int* lengths);

/* BankTransfer */
ORVELAN_API int BankTransfer_StaticInit(void* reserved);
ORVELAN_API int BankTransfer_StaticDestroy(void);
ORVELAN_API void* BankTransfer_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int BankTransfer_Destroy(void* obj);
ORVELAN_API int BankTransfer_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* BankTransfer_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int BankTransfer_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* BankTransfer_GetLastError(void* obj);
ORVELAN_API int BankTransfer_GetLastErrorCode(void* obj);
ORVELAN_API int BankTransfer_Do(void* obj, int method_id, int param_count, void** params, int* lengths);

/* BillPayment */
ORVELAN_API int BillPayment_StaticInit(void* reserved);
ORVELAN_API int BillPayment_StaticDestroy(void);
ORVELAN_API void* BillPayment_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int BillPayment_Destroy(void* obj);
ORVELAN_API int BillPayment_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* BillPayment_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int BillPayment_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* BillPayment_GetLastError(void* obj);
ORVELAN_API int BillPayment_GetLastErrorCode(void* obj);
ORVELAN_API int BillPayment_Do(void* obj, int method_id, int param_count, void** params, int* lengths);

/* CCStatement */
ORVELAN_API int CCStatement_StaticInit(void* reserved);
ORVELAN_API int CCStatement_StaticDestroy(void);
ORVELAN_API void* CCStatement_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int CCStatement_Destroy(void* obj);
ORVELAN_API int CCStatement_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* CCStatement_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int CCStatement_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* CCStatement_GetLastError(void* obj);
ORVELAN_API int CCStatement_GetLastErrorCode(void* obj);
ORVELAN_API int CCStatement_Do(void* obj, int method_id, int param_count, void** params, int* lengths);
/* CCStatement property ids. */
#define CCSTATEMENT_PROP_AVAILABLEBALANCE 1
#define CCSTATEMENT_PROP_AVAILABLEBALANCEDATE 2
#define CCSTATEMENT_PROP_CARDNUMBER 3
#define CCSTATEMENT_PROP_CLOSINGINFOCOUNT 4
#define CCSTATEMENT_PROP_CLOSINGINFOAGGREGATE 5
#define CCSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE 6
#define CCSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN 7
#define CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT 8
#define CCSTATEMENT_PROP_CLOSINGINFODATECLOSE 9
#define CCSTATEMENT_PROP_CLOSINGINFODATEDUE 10
#define CCSTATEMENT_PROP_CLOSINGINFODATEEND 11
#define CCSTATEMENT_PROP_CLOSINGINFODATEOPEN 12
#define CCSTATEMENT_PROP_CLOSINGINFODATESTART 13
#define CCSTATEMENT_PROP_CLOSINGINFOFITID 14
#define CCSTATEMENT_PROP_CLOSINGINFOIMAGEREF 15
#define CCSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE 16
#define CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE 17
#define CCSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS 18
#define CCSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS 19
#define CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES 20
#define CCSTATEMENT_PROP_CURRENCYCODE 21
#define CCSTATEMENT_PROP_ENDDATE 22
#define CCSTATEMENT_PROP_FIID 23
#define CCSTATEMENT_PROP_FIORGANIZATION 24
#define CCSTATEMENT_PROP_FIREWALLAUTODETECT 25
#define CCSTATEMENT_PROP_FIREWALLTYPE 26
#define CCSTATEMENT_PROP_FIREWALLHOST 27
#define CCSTATEMENT_PROP_FIREWALLPASSWORD 28
#define CCSTATEMENT_PROP_FIREWALLPORT 29
#define CCSTATEMENT_PROP_FIREWALLUSER 30
#define CCSTATEMENT_PROP_FIURL 31
#define CCSTATEMENT_PROP_IMAGEFILE 32
#define CCSTATEMENT_PROP_INCLUDEIMAGES 33
#define CCSTATEMENT_PROP_LEDGERBALANCE 34
#define CCSTATEMENT_PROP_LEDGERBALANCEDATE 35
#define CCSTATEMENT_PROP_OFXACCESSKEY 36
#define CCSTATEMENT_PROP_OFXAPPID 37
#define CCSTATEMENT_PROP_OFXAPPVERSION 38
#define CCSTATEMENT_PROP_OFXPASSWORD 39
#define CCSTATEMENT_PROP_OFXREQUEST 40
#define CCSTATEMENT_PROP_OFXRESPONSE 41
#define CCSTATEMENT_PROP_OFXUSER 42
#define CCSTATEMENT_PROP_OFXVERSION 43
#define CCSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED 44
#define CCSTATEMENT_PROP_SSLCERTENCODED 45
#define CCSTATEMENT_PROP_SSLCERTSTORE 46
#define CCSTATEMENT_PROP_SSLCERTSTOREPASSWORD 47
#define CCSTATEMENT_PROP_SSLCERTSTORETYPE 48
#define CCSTATEMENT_PROP_SSLCERTSUBJECT 49
#define CCSTATEMENT_PROP_SSLSERVERCERTENCODED 50
#define CCSTATEMENT_PROP_STARTDATE 51
#define CCSTATEMENT_PROP_TIMEOUT 52
#define CCSTATEMENT_PROP_TXCOUNT 53
#define CCSTATEMENT_PROP_TXAGGREGATE 54
#define CCSTATEMENT_PROP_TXAMOUNT 55
#define CCSTATEMENT_PROP_TXDATEINITIATED 56
#define CCSTATEMENT_PROP_TXDATEPOSTED 57
#define CCSTATEMENT_PROP_TXFITID 58
#define CCSTATEMENT_PROP_TXMEMO 59
#define CCSTATEMENT_PROP_TXPAYEENAME 60
#define CCSTATEMENT_PROP_TXTYPE 61
#define CCSTATEMENT_PROP_TXTYPEDESCRIPTION 62
/* CCStatement method ids. */
#define CCSTATEMENT_METHOD_CONFIG 2
#define CCSTATEMENT_METHOD_GETCLOSINGINFO 3
#define CCSTATEMENT_METHOD_GETIMAGE 4
#define CCSTATEMENT_METHOD_GETSTATEMENT 5
#define CCSTATEMENT_METHOD_READOFXDATAFILE 6
#define CCSTATEMENT_METHOD_RESET 7
#define CCSTATEMENT_METHOD_WRITEOFXDATAFILE 8

/* FIProfile */
ORVELAN_API int FIProfile_StaticInit(void* reserved);
ORVELAN_API int FIProfile_StaticDestroy(void);
ORVELAN_API void* FIProfile_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int FIProfile_Destroy(void* obj);
ORVELAN_API int FIProfile_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* FIProfile_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int FIProfile_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* FIProfile_GetLastError(void* obj);
ORVELAN_API int FIProfile_GetLastErrorCode(void* obj);
ORVELAN_API int FIProfile_Do(void* obj, int method_id, int param_count, void** params, int* lengths);

/* InvStatement */
ORVELAN_API int InvStatement_StaticInit(void* reserved);
ORVELAN_API int InvStatement_StaticDestroy(void);
ORVELAN_API void* InvStatement_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int InvStatement_Destroy(void* obj);
ORVELAN_API int InvStatement_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* InvStatement_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int InvStatement_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* InvStatement_GetLastError(void* obj);
ORVELAN_API int InvStatement_GetLastErrorCode(void* obj);
ORVELAN_API int InvStatement_Do(void* obj, int method_id, int param_count, void** params, int* lengths);
/* InvStatement property ids. */
#define INVSTATEMENT_PROP_ACCOUNTID 1
#define INVSTATEMENT_PROP_ASOFDATE 2
#define INVSTATEMENT_PROP_AVAILABLECASH 3
#define INVSTATEMENT_PROP_BALCOUNT 4
#define INVSTATEMENT_PROP_BALAGGREGATE 5
#define INVSTATEMENT_PROP_BALAMOUNT 6
#define INVSTATEMENT_PROP_BALAMOUNTTYPE 7
#define INVSTATEMENT_PROP_BALDESCRIPTION 8
#define INVSTATEMENT_PROP_BALNAME 9
#define INVSTATEMENT_PROP_BALTYPEDESCRIPTION 10
#define INVSTATEMENT_PROP_BROKERID 11
#define INVSTATEMENT_PROP_BUYINGPOWER 12
#define INVSTATEMENT_PROP_CLOSINGINFOCOUNT 13
#define INVSTATEMENT_PROP_CLOSINGINFOAGGREGATE 14
#define INVSTATEMENT_PROP_CLOSINGINFOFITID 15
#define INVSTATEMENT_PROP_CLOSINGINFOIMAGEREF 16
#define INVSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE 17
#define INVSTATEMENT_PROP_CURRENCYCODE 18
#define INVSTATEMENT_PROP_ENDDATE 19
#define INVSTATEMENT_PROP_FIID 20
#define INVSTATEMENT_PROP_FIORGANIZATION 21
#define INVSTATEMENT_PROP_FIREWALLAUTODETECT 22
#define INVSTATEMENT_PROP_FIREWALLTYPE 23
#define INVSTATEMENT_PROP_FIREWALLHOST 24
#define INVSTATEMENT_PROP_FIREWALLPASSWORD 25
#define INVSTATEMENT_PROP_FIREWALLPORT 26
#define INVSTATEMENT_PROP_FIREWALLUSER 27
#define INVSTATEMENT_PROP_FIURL 28
#define INVSTATEMENT_PROP_IMAGEFILE 29
#define INVSTATEMENT_PROP_INCLUDEBALANCES 30
#define INVSTATEMENT_PROP_INCLUDEIMAGES 31
#define INVSTATEMENT_PROP_INCLUDEOPENORDERS 32
#define INVSTATEMENT_PROP_INCLUDEPOSITIONS 33
#define INVSTATEMENT_PROP_INCLUDETRANSACTIONS 34
#define INVSTATEMENT_PROP_MARGINBALANCE 35
#define INVSTATEMENT_PROP_MARKETINGINFO 36
#define INVSTATEMENT_PROP_OFXACCESSKEY 37
#define INVSTATEMENT_PROP_OFXAPPID 38
#define INVSTATEMENT_PROP_OFXAPPVERSION 39
#define INVSTATEMENT_PROP_OFXPASSWORD 40
#define INVSTATEMENT_PROP_OFXREQUEST 41
#define INVSTATEMENT_PROP_OFXRESPONSE 42
#define INVSTATEMENT_PROP_OFXUSER 43
#define INVSTATEMENT_PROP_OFXVERSION 44
#define INVSTATEMENT_PROP_OOCOUNT 45
#define INVSTATEMENT_PROP_OOAGGREGATE 46
#define INVSTATEMENT_PROP_OOBUYTYPE 47
#define INVSTATEMENT_PROP_OODATEPLACED 48
#define INVSTATEMENT_PROP_OODURATION 49
#define INVSTATEMENT_PROP_OOFITID 50
#define INVSTATEMENT_PROP_OOMEMO 51
#define INVSTATEMENT_PROP_OOORDERTYPE 52
#define INVSTATEMENT_PROP_OORESTRICTION 53
#define INVSTATEMENT_PROP_OOSECURITYID 54
#define INVSTATEMENT_PROP_OOSELLTYPE 55
#define INVSTATEMENT_PROP_OOSUBACCOUNT 56
#define INVSTATEMENT_PROP_OOTYPEDESCRIPTION 57
#define INVSTATEMENT_PROP_OOUNITS 58
#define INVSTATEMENT_PROP_OOUNITTYPE 59
#define INVSTATEMENT_PROP_POSCOUNT 60
#define INVSTATEMENT_PROP_POSACCOUNTTYPE 61
#define INVSTATEMENT_PROP_POSAGGREGATE 62
#define INVSTATEMENT_PROP_POSDATEPRICEASOF 63
#define INVSTATEMENT_PROP_POSMARKETVALUE 64
#define INVSTATEMENT_PROP_POSMEMO 65
#define INVSTATEMENT_PROP_POSPOSITIONTYPE 66
#define INVSTATEMENT_PROP_POSSECTYPE 67
#define INVSTATEMENT_PROP_POSSECURITYID 68
#define INVSTATEMENT_PROP_POSTYPEDESCRIPTION 69
#define INVSTATEMENT_PROP_POSUNITPRICE 70
#define INVSTATEMENT_PROP_POSUNITS 71
#define INVSTATEMENT_PROP_SECCOUNT 72
#define INVSTATEMENT_PROP_SECAGGREGATE 73
#define INVSTATEMENT_PROP_SECASSETCLASS 74
#define INVSTATEMENT_PROP_SECFIID 75
#define INVSTATEMENT_PROP_SECMEMO 76
#define INVSTATEMENT_PROP_SECNAME 77
#define INVSTATEMENT_PROP_SECSECTYPE 78
#define INVSTATEMENT_PROP_SECSECURITYID 79
#define INVSTATEMENT_PROP_SECTICKER 80
#define INVSTATEMENT_PROP_SECTYPEDESCRIPTION 81
#define INVSTATEMENT_PROP_SECUNITPRICE 82
#define INVSTATEMENT_PROP_SECYIELD 83
#define INVSTATEMENT_PROP_SHORTBALANCE 84
#define INVSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED 85
#define INVSTATEMENT_PROP_SSLCERTENCODED 86
#define INVSTATEMENT_PROP_SSLCERTSTORE 87
#define INVSTATEMENT_PROP_SSLCERTSTOREPASSWORD 88
#define INVSTATEMENT_PROP_SSLCERTSTORETYPE 89
#define INVSTATEMENT_PROP_SSLCERTSUBJECT 90
#define INVSTATEMENT_PROP_SSLSERVERCERTENCODED 91
#define INVSTATEMENT_PROP_STARTDATE 92
#define INVSTATEMENT_PROP_STATEMENTDATE 93
#define INVSTATEMENT_PROP_TIMEOUT 94
#define INVSTATEMENT_PROP_TXCOUNT 95
#define INVSTATEMENT_PROP_TXAGGREGATE 96
#define INVSTATEMENT_PROP_TXDATE 97
#define INVSTATEMENT_PROP_TXDATESETTLE 98
#define INVSTATEMENT_PROP_TXFITID 99
#define INVSTATEMENT_PROP_TXMEMO 100
#define INVSTATEMENT_PROP_TXNAME 101
#define INVSTATEMENT_PROP_TXSECURITYID 102
#define INVSTATEMENT_PROP_TXSUBACCOUNTFUND 103
#define INVSTATEMENT_PROP_TXSUBACCOUNTSEC 104
#define INVSTATEMENT_PROP_TXTOTAL 105
#define INVSTATEMENT_PROP_TXTYPE 106
#define INVSTATEMENT_PROP_TXTYPEDESCRIPTION 107
#define INVSTATEMENT_PROP_TXUNITPRICE 108
#define INVSTATEMENT_PROP_TXUNITS 109
/* InvStatement method ids. */
#define INVSTATEMENT_METHOD_CONFIG 2
#define INVSTATEMENT_METHOD_GETCLOSINGINFO 3
#define INVSTATEMENT_METHOD_GETIMAGE 4
#define INVSTATEMENT_METHOD_GETSTATEMENT 5
#define INVSTATEMENT_METHOD_READOFXDATAFILE 6
#define INVSTATEMENT_METHOD_RESET 7
#define INVSTATEMENT_METHOD_WRITEOFXDATAFILE 8

/* LoanStatement */
ORVELAN_API int LoanStatement_StaticInit(void* reserved);
ORVELAN_API int LoanStatement_StaticDestroy(void);
ORVELAN_API void* LoanStatement_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int LoanStatement_Destroy(void* obj);
ORVELAN_API int LoanStatement_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* LoanStatement_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int LoanStatement_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* LoanStatement_GetLastError(void* obj);
ORVELAN_API int LoanStatement_GetLastErrorCode(void* obj);
ORVELAN_API int LoanStatement_Do(void* obj, int method_id, int param_count, void** params, int* lengths);
/* LoanStatement property ids. */
#define LOANSTATEMENT_PROP_ACCOUNTID 1
#define LOANSTATEMENT_PROP_ACCOUNTTYPE 2
#define LOANSTATEMENT_PROP_AVAILABLEBALANCE 3
#define LOANSTATEMENT_PROP_AVAILABLEBALANCEDATE 4
#define LOANSTATEMENT_PROP_CLOSINGINFOCOUNT 5
#define LOANSTATEMENT_PROP_CLOSINGINFOAGGREGATE 6
#define LOANSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN 7
#define LOANSTATEMENT_PROP_CLOSINGINFODATECLOSE 8
#define LOANSTATEMENT_PROP_CLOSINGINFODATEDUE 9
#define LOANSTATEMENT_PROP_CLOSINGINFODATEEND 10
#define LOANSTATEMENT_PROP_CLOSINGINFODATEOPEN 11
#define LOANSTATEMENT_PROP_CLOSINGINFODATESTART 12
#define LOANSTATEMENT_PROP_CLOSINGINFOFITID 13
#define LOANSTATEMENT_PROP_CLOSINGINFOIMAGEREF 14
#define LOANSTATEMENT_PROP_CLOSINGINFOIMAGEREFTYPE 15
#define LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE 16
#define LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST 17
#define LOANSTATEMENT_PROP_CURRENCYCODE 18
#define LOANSTATEMENT_PROP_ENDDATE 19
#define LOANSTATEMENT_PROP_FIID 20
#define LOANSTATEMENT_PROP_FIORGANIZATION 21
#define LOANSTATEMENT_PROP_FIREWALLAUTODETECT 22
#define LOANSTATEMENT_PROP_FIREWALLTYPE 23
#define LOANSTATEMENT_PROP_FIREWALLHOST 24
#define LOANSTATEMENT_PROP_FIREWALLPASSWORD 25
#define LOANSTATEMENT_PROP_FIREWALLPORT 26
#define LOANSTATEMENT_PROP_FIREWALLUSER 27
#define LOANSTATEMENT_PROP_FIURL 28
#define LOANSTATEMENT_PROP_IMAGEFILE 29
#define LOANSTATEMENT_PROP_INCLUDEIMAGES 30
#define LOANSTATEMENT_PROP_OFXACCESSKEY 31
#define LOANSTATEMENT_PROP_OFXAPPID 32
#define LOANSTATEMENT_PROP_OFXAPPVERSION 33
#define LOANSTATEMENT_PROP_OFXPASSWORD 34
#define LOANSTATEMENT_PROP_OFXREQUEST 35
#define LOANSTATEMENT_PROP_OFXRESPONSE 36
#define LOANSTATEMENT_PROP_OFXUSER 37
#define LOANSTATEMENT_PROP_OFXVERSION 38
#define LOANSTATEMENT_PROP_PRINCIPALBALANCE 39
#define LOANSTATEMENT_PROP_PRINCIPALBALANCEDATE 40
#define LOANSTATEMENT_PROP_SSLACCEPTSERVERCERTENCODED 41
#define LOANSTATEMENT_PROP_SSLCERTENCODED 42
#define LOANSTATEMENT_PROP_SSLCERTSTORE 43
#define LOANSTATEMENT_PROP_SSLCERTSTOREPASSWORD 44
#define LOANSTATEMENT_PROP_SSLCERTSTORETYPE 45
#define LOANSTATEMENT_PROP_SSLCERTSUBJECT 46
#define LOANSTATEMENT_PROP_SSLSERVERCERTENCODED 47
#define LOANSTATEMENT_PROP_STARTDATE 48
#define LOANSTATEMENT_PROP_TIMEOUT 49
#define LOANSTATEMENT_PROP_TOTALPRINCIPALLTD 50
#define LOANSTATEMENT_PROP_TOTALPRINCIPALYTD 51
#define LOANSTATEMENT_PROP_TXCOUNT 52
#define LOANSTATEMENT_PROP_TXAGGREGATE 53
#define LOANSTATEMENT_PROP_TXAMOUNT 54
#define LOANSTATEMENT_PROP_TXCHECKNUMBER 55
#define LOANSTATEMENT_PROP_TXDATEPOSTED 56
#define LOANSTATEMENT_PROP_TXESCROWTOTAL 57
#define LOANSTATEMENT_PROP_TXFITID 58
#define LOANSTATEMENT_PROP_TXIMAGEREF 59
#define LOANSTATEMENT_PROP_TXIMAGEREFTYPE 60
#define LOANSTATEMENT_PROP_TXINTERESTAMOUNT 61
#define LOANSTATEMENT_PROP_TXMEMO 62
#define LOANSTATEMENT_PROP_TXPAYEENAME 63
#define LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT 64
#define LOANSTATEMENT_PROP_TXTYPE 65
#define LOANSTATEMENT_PROP_TXTYPEDESCRIPTION 66
/* LoanStatement method ids. */
#define LOANSTATEMENT_METHOD_CONFIG 2
#define LOANSTATEMENT_METHOD_GETCLOSINGINFO 3
#define LOANSTATEMENT_METHOD_GETIMAGE 4
#define LOANSTATEMENT_METHOD_GETSTATEMENT 5
#define LOANSTATEMENT_METHOD_READOFXDATAFILE 6
#define LOANSTATEMENT_METHOD_RESET 7
#define LOANSTATEMENT_METHOD_WRITEOFXDATAFILE 8

/* OFXAggregate */
ORVELAN_API int OFXAggregate_StaticInit(void* reserved);
ORVELAN_API int OFXAggregate_StaticDestroy(void);
ORVELAN_API void* OFXAggregate_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int OFXAggregate_Destroy(void* obj);
ORVELAN_API int OFXAggregate_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* OFXAggregate_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int OFXAggregate_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* OFXAggregate_GetLastError(void* obj);
ORVELAN_API int OFXAggregate_GetLastErrorCode(void* obj);
ORVELAN_API int OFXAggregate_Do(void* obj, int method_id, int param_count, void** params, int* lengths);
/* OFXAggregate property ids. */
#define OFXAGGREGATE_PROP_AGGREGATE 1
#define OFXAGGREGATE_PROP_AGGREGATENAMESPACECOUNT 2
#define OFXAGGREGATE_PROP_AGGREGATENAMESPACEPREFIX 3
#define OFXAGGREGATE_PROP_AGGREGATENAMESPACEURI 4
#define OFXAGGREGATE_PROP_CHILDCOUNT 5
#define OFXAGGREGATE_PROP_CHILDNAME 6
#define OFXAGGREGATE_PROP_CHILDNAMESPACE 7
#define OFXAGGREGATE_PROP_CHILDPREFIX 8
#define OFXAGGREGATE_PROP_CHILDTEXT 9
#define OFXAGGREGATE_PROP_ELEMENTNAME 10
#define OFXAGGREGATE_PROP_ELEMENTNAMESPACE 11
#define OFXAGGREGATE_PROP_ELEMENTPARENT 12
#define OFXAGGREGATE_PROP_ELEMENTPATH 13
#define OFXAGGREGATE_PROP_ELEMENTPREFIX 14
#define OFXAGGREGATE_PROP_ELEMENTTEXT 15
/* OFXAggregate method ids. */
#define OFXAGGREGATE_METHOD_CONFIG 2
#define OFXAGGREGATE_METHOD_PATHEXISTS 3

/* OFXBatch */
ORVELAN_API int OFXBatch_StaticInit(void* reserved);
ORVELAN_API int OFXBatch_StaticDestroy(void);
ORVELAN_API void* OFXBatch_Create(EventCallback callback, void* user_data, char* reserved);
ORVELAN_API int OFXBatch_Destroy(void* obj);
ORVELAN_API int OFXBatch_CheckIndex(void* obj, int property_id, int index);
ORVELAN_API void* OFXBatch_Get(void* obj, int property_id, int index, int* length);
ORVELAN_API int OFXBatch_Set(void* obj, int property_id, int index, const void* value, int length);
ORVELAN_API const char* OFXBatch_GetLastError(void* obj);
ORVELAN_API int OFXBatch_GetLastErrorCode(void* obj);
ORVELAN_API int OFXBatch_Do(void* obj, int method_id, int param_count, void** params, int* lengths);

/* The library also exports atof (declared in <stdlib.h>): its own version reads
 * the decimal point as "." whatever the C locale says. */

#ifdef __cplusplus
}
#endif

#endif /* ORVELAN_H */
