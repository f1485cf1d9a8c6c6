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
/* Account property ids. */
#define ACCOUNT_PROP_ACCCOUNT 1
#define ACCOUNT_PROP_ACCTYPE 2
#define ACCOUNT_PROP_ACCAGGREGATE 3
#define ACCOUNT_PROP_ACCBANKID 4
#define ACCOUNT_PROP_ACCBRANCHID 5
#define ACCOUNT_PROP_ACCCHECKING 6
#define ACCOUNT_PROP_ACCDESCRIPTION 7
#define ACCOUNT_PROP_ACCID 8
#define ACCOUNT_PROP_ACCISTRANSFERDESTINATION 9
#define ACCOUNT_PROP_ACCISTRANSFERSOURCE 10
#define ACCOUNT_PROP_ACCKEY 11
#define ACCOUNT_PROP_ACCPHONE 12
#define ACCOUNT_PROP_ACCSERVICETYPE 13
#define ACCOUNT_PROP_ACCSTATUS 14
#define ACCOUNT_PROP_ACCSUPPORTSTXDOWNLOAD 15
#define ACCOUNT_PROP_ACCUSPRODUCTTYPE 16
#define ACCOUNT_PROP_FIID 17
#define ACCOUNT_PROP_FIORGANIZATION 18
#define ACCOUNT_PROP_FIREWALLAUTODETECT 19
#define ACCOUNT_PROP_FIREWALLTYPE 20
#define ACCOUNT_PROP_FIREWALLHOST 21
#define ACCOUNT_PROP_FIREWALLPASSWORD 22
#define ACCOUNT_PROP_FIREWALLPORT 23
#define ACCOUNT_PROP_FIREWALLUSER 24
#define ACCOUNT_PROP_FIURL 25
#define ACCOUNT_PROP_LASTUPDATE 26
#define ACCOUNT_PROP_OFXACCESSKEY 27
#define ACCOUNT_PROP_OFXAPPID 28
#define ACCOUNT_PROP_OFXAPPVERSION 29
#define ACCOUNT_PROP_OFXPASSWORD 30
#define ACCOUNT_PROP_OFXREQUEST 31
#define ACCOUNT_PROP_OFXRESPONSE 32
#define ACCOUNT_PROP_OFXUSER 33
#define ACCOUNT_PROP_OFXVERSION 34
#define ACCOUNT_PROP_SSLACCEPTSERVERCERTENCODED 35
#define ACCOUNT_PROP_SSLCERTENCODED 36
#define ACCOUNT_PROP_SSLCERTSTORE 37
#define ACCOUNT_PROP_SSLCERTSTOREPASSWORD 38
#define ACCOUNT_PROP_SSLCERTSTORETYPE 39
#define ACCOUNT_PROP_SSLCERTSUBJECT 40
#define ACCOUNT_PROP_SSLSERVERCERTENCODED 41
#define ACCOUNT_PROP_TIMEOUT 42
/* Account method ids. */
#define ACCOUNT_METHOD_CONFIG 2
#define ACCOUNT_METHOD_GETINFO 3
#define ACCOUNT_METHOD_READOFXDATAFILE 4
#define ACCOUNT_METHOD_RESET 5
#define ACCOUNT_METHOD_WRITEOFXDATAFILE 6

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
/* FIProfile property ids. */
#define FIPROFILE_PROP_CHALLENGEQUESTIONCOUNT 1
#define FIPROFILE_PROP_CHALLENGEQUESTIONAGGREGATE 2
#define FIPROFILE_PROP_CHALLENGEQUESTIONANSWER 3
#define FIPROFILE_PROP_CHALLENGEQUESTIONLABEL 4
#define FIPROFILE_PROP_CHALLENGEQUESTIONPHRASEID 5
#define FIPROFILE_PROP_CLIENTROUTING 6
#define FIPROFILE_PROP_FIADDRESS1 7
#define FIPROFILE_PROP_FIADDRESS2 8
#define FIPROFILE_PROP_FIADDRESS3 9
#define FIPROFILE_PROP_FICITY 10
#define FIPROFILE_PROP_FICOUNTRY 11
#define FIPROFILE_PROP_FICUSTOMERSERVICEPHONE 12
#define FIPROFILE_PROP_FIEMAIL 13
#define FIPROFILE_PROP_FIHOMEPAGE 14
#define FIPROFILE_PROP_FIID 15
#define FIPROFILE_PROP_FINAME 16
#define FIPROFILE_PROP_FIORGANIZATION 17
#define FIPROFILE_PROP_FIPOSTALCODE 18
#define FIPROFILE_PROP_FIPROFILEDATE 19
#define FIPROFILE_PROP_FIREWALLAUTODETECT 20
#define FIPROFILE_PROP_FIREWALLTYPE 21
#define FIPROFILE_PROP_FIREWALLHOST 22
#define FIPROFILE_PROP_FIREWALLPASSWORD 23
#define FIPROFILE_PROP_FIREWALLPORT 24
#define FIPROFILE_PROP_FIREWALLUSER 25
#define FIPROFILE_PROP_FISTATE 26
#define FIPROFILE_PROP_FITECHSUPPORTPHONE 27
#define FIPROFILE_PROP_FIURL 28
#define FIPROFILE_PROP_LASTUPDATE 29
#define FIPROFILE_PROP_MESSAGESETCOUNT 30
#define FIPROFILE_PROP_MESSAGESETAGGREGATE 31
#define FIPROFILE_PROP_MESSAGESETCLOSINGAVAILABLE 32
#define FIPROFILE_PROP_MESSAGESETCLOSINGIMAGEAVAILABLE 33
#define FIPROFILE_PROP_MESSAGESETLANGUAGE 34
#define FIPROFILE_PROP_MESSAGESETNAME 35
#define FIPROFILE_PROP_MESSAGESETRECOVERY 36
#define FIPROFILE_PROP_MESSAGESETREFRESHSUPPORT 37
#define FIPROFILE_PROP_MESSAGESETSECURITY 38
#define FIPROFILE_PROP_MESSAGESETSERVICEPROVIDER 39
#define FIPROFILE_PROP_MESSAGESETSIGNONREALM 40
#define FIPROFILE_PROP_MESSAGESETSYNCMODE 41
#define FIPROFILE_PROP_MESSAGESETTRANSPORTSECURITY 42
#define FIPROFILE_PROP_MESSAGESETTXIMAGEAVAILABLE 43
#define FIPROFILE_PROP_MESSAGESETURL 44
#define FIPROFILE_PROP_MESSAGESETVERSION 45
#define FIPROFILE_PROP_OFXACCESSKEY 46
#define FIPROFILE_PROP_OFXAPPID 47
#define FIPROFILE_PROP_OFXAPPVERSION 48
#define FIPROFILE_PROP_OFXPASSWORD 49
#define FIPROFILE_PROP_OFXREQUEST 50
#define FIPROFILE_PROP_OFXRESPONSE 51
#define FIPROFILE_PROP_OFXUSER 52
#define FIPROFILE_PROP_OFXVERSION 53
#define FIPROFILE_PROP_SIGNONCOUNT 54
#define FIPROFILE_PROP_SIGNONAGGREGATE 55
#define FIPROFILE_PROP_SIGNONAUTHTOKENLABEL 56
#define FIPROFILE_PROP_SIGNONAUTHTOKENREQUIRED 57
#define FIPROFILE_PROP_SIGNONAUTHTOKENURL 58
#define FIPROFILE_PROP_SIGNONCASESENSITIVE 59
#define FIPROFILE_PROP_SIGNONCHARTYPE 60
#define FIPROFILE_PROP_SIGNONCLIENTUIDREQ 61
#define FIPROFILE_PROP_SIGNONMAXCHARS 62
#define FIPROFILE_PROP_SIGNONMFACHALLENGEFIRST 63
#define FIPROFILE_PROP_SIGNONMFACHALLENGESUPPORTED 64
#define FIPROFILE_PROP_SIGNONMINCHARS 65
#define FIPROFILE_PROP_SIGNONPINCHANGE 66
#define FIPROFILE_PROP_SIGNONPINCHANGEFIRST 67
#define FIPROFILE_PROP_SIGNONREALM 68
#define FIPROFILE_PROP_SIGNONSPACES 69
#define FIPROFILE_PROP_SIGNONSPECIAL 70
#define FIPROFILE_PROP_SIGNONUSERCRED1LABEL 71
#define FIPROFILE_PROP_SIGNONUSERCRED2LABEL 72
#define FIPROFILE_PROP_SSLACCEPTSERVERCERTENCODED 73
#define FIPROFILE_PROP_SSLCERTENCODED 74
#define FIPROFILE_PROP_SSLCERTSTORE 75
#define FIPROFILE_PROP_SSLCERTSTOREPASSWORD 76
#define FIPROFILE_PROP_SSLCERTSTORETYPE 77
#define FIPROFILE_PROP_SSLCERTSUBJECT 78
#define FIPROFILE_PROP_SSLSERVERCERTENCODED 79
#define FIPROFILE_PROP_TIMEOUT 80
/* FIProfile method ids. */
#define FIPROFILE_METHOD_CONFIG 2
#define FIPROFILE_METHOD_GETPROFILE 3
#define FIPROFILE_METHOD_READOFXDATAFILE 4
#define FIPROFILE_METHOD_REQUESTCHALLENGEQUESTIONS 5
#define FIPROFILE_METHOD_RESET 6
#define FIPROFILE_METHOD_SENDCHALLENGEANSWERS 7
#define FIPROFILE_METHOD_WRITEOFXDATAFILE 8

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
