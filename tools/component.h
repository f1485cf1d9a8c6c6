#pragma once
#include "orvelan.h"

// One component's exported functions and the ids of its sign-on properties
// (0 where it has none).
struct Component {
  const char* name;
  void* (*create)(EventCallback, void*, char*);
  int (*destroy)(void*);
  void* (*get)(void*, int, int, int*);
  int (*set)(void*, int, int, const void*, int);
  int (*run)(void*, int, int, void**, int*);
  const char* (*last_error)(void*);
  int (*last_error_code)(void*);
  int config_method;
  int fi_url = 0, fi_organization = 0, fi_id = 0, ofx_user = 0, ofx_password = 0, ofx_app_id = 0,
      ofx_app_version = 0, ofx_version = 0, ofx_access_key = 0, timeout = 0, ssl_accept_server_cert = 0;
};

#define ORVELAN_ENTRY_POINTS(C) \
  #C, C##_Create, C##_Destroy, C##_Get, C##_Set, C##_Do, C##_GetLastError, C##_GetLastErrorCode
#define ORVELAN_COMPONENT(C, P)                                                                                  \
  {ORVELAN_ENTRY_POINTS(C), P##_METHOD_CONFIG, P##_PROP_FIURL, P##_PROP_FIORGANIZATION, P##_PROP_FIID,           \
   P##_PROP_OFXUSER, P##_PROP_OFXPASSWORD, P##_PROP_OFXAPPID, P##_PROP_OFXAPPVERSION, P##_PROP_OFXVERSION,       \
   P##_PROP_OFXACCESSKEY, P##_PROP_TIMEOUT, P##_PROP_SSLACCEPTSERVERCERTENCODED}

