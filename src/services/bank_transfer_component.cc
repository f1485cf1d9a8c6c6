#include "services/bank_transfer_component.h"

#include "services/common_properties.h"

namespace orvelan {
namespace {

using S = BankTransferService;
using T = TransferInfo;
using P = PropertyBuilder<S>;

template <T::Field kField>
PropertyDef<S> Input(int id, const char* name) {
  return P::Text<&S::TransferText<kField>, &S::SetTransferText<kField>>(id, name, "");
}
template <T::Field kField>
PropertyDef<S> Synced(int id, const char* name) {
  return P::IndexedText<&S::SyncText<kField>, &S::CheckSyncIndex>(id, name);
}
template <T::Field kField>
PropertyDef<S> SyncedDate(int id, const char* name) {
  return P::IndexedText<&S::SyncDate<kField>, &S::CheckSyncIndex>(id, name);
}

std::vector<PropertyDef<S>> Properties() {
  std::vector<PropertyDef<S>> table = {
      P::Bool<&S::LostSync>(BANKTRANSFER_PROP_LOSTSYNC, "LostSync"),
      P::Int<&S::SyncTransferCount>(BANKTRANSFER_PROP_SYNCTRANSFERCOUNT, "SyncTransferCount"),
      Synced<T::kAggregate>(BANKTRANSFER_PROP_SYNCTRANSFERAGGREGATE, "SyncTransferAggregate"),
      Synced<T::kAmount>(BANKTRANSFER_PROP_SYNCTRANSFERAMOUNT, "SyncTransferAmount"),
      Synced<T::kDateDue>(BANKTRANSFER_PROP_SYNCTRANSFERDATEDUE, "SyncTransferDateDue"),
      SyncedDate<T::kDatePosted>(BANKTRANSFER_PROP_SYNCTRANSFERDATEPOSTED, "SyncTransferDatePosted"),
      SyncedDate<T::kDateProcessed>(BANKTRANSFER_PROP_SYNCTRANSFERDATEPROCESSED, "SyncTransferDateProcessed"),
      SyncedDate<T::kDateProjected>(BANKTRANSFER_PROP_SYNCTRANSFERDATEPROJECTED, "SyncTransferDateProjected"),
      Synced<T::kFromAccountId>(BANKTRANSFER_PROP_SYNCTRANSFERFROMACCOUNTID, "SyncTransferFromAccountId"),
      Synced<T::kTransferId>(BANKTRANSFER_PROP_SYNCTRANSFERID, "SyncTransferId"),
      Synced<T::kProcessingStatus>(BANKTRANSFER_PROP_SYNCTRANSFERSTATUS, "SyncTransferStatus"),
      Synced<T::kToAccountId>(BANKTRANSFER_PROP_SYNCTRANSFERTOACCOUNTID, "SyncTransferToAccountId"),
      Synced<T::kStatus>(BANKTRANSFER_PROP_SYNCTRANSFERTYPE, "SyncTransferType"),
      Input<T::kAmount>(BANKTRANSFER_PROP_TRANSFERAMOUNT, "TransferAmount"),
      P::Text<&S::TransferText<T::kCurrency>>(BANKTRANSFER_PROP_TRANSFERCURRENCY, "TransferCurrency"),
      Input<T::kDateDue>(BANKTRANSFER_PROP_TRANSFERDATEDUE, "TransferDateDue"),
      P::Text<&S::TransferDate<T::kDatePosted>>(BANKTRANSFER_PROP_TRANSFERDATEPOSTED, "TransferDatePosted"),
      P::Text<&S::TransferDate<T::kDateProcessed>>(BANKTRANSFER_PROP_TRANSFERDATEPROCESSED, "TransferDateProcessed"),
      Input<T::kFromAccountId>(BANKTRANSFER_PROP_TRANSFERFROMACCOUNTID, "TransferFromAccountId"),
      Input<T::kFromAccountKey>(BANKTRANSFER_PROP_TRANSFERFROMACCOUNTKEY, "TransferFromAccountKey"),
      P::Int<&S::FromAccountType, &S::SetFromAccountType>(BANKTRANSFER_PROP_TRANSFERFROMACCOUNTTYPE,
                                                          "TransferFromAccountType", true, 0),
      Input<T::kFromBankId>(BANKTRANSFER_PROP_TRANSFERFROMBANKID, "TransferFromBankId"),
      Input<T::kFromBranchId>(BANKTRANSFER_PROP_TRANSFERFROMBRANCHID, "TransferFromBranchId"),
      Input<T::kTransferId>(BANKTRANSFER_PROP_TRANSFERID, "TransferId"),
      P::Text<&S::TransferText<T::kProcessingStatus>>(BANKTRANSFER_PROP_TRANSFERSTATUS, "TransferStatus"),
      Input<T::kToAccountId>(BANKTRANSFER_PROP_TRANSFERTOACCOUNTID, "TransferToAccountId"),
      Input<T::kToAccountKey>(BANKTRANSFER_PROP_TRANSFERTOACCOUNTKEY, "TransferToAccountKey"),
      P::Int<&S::ToAccountType, &S::SetToAccountType>(BANKTRANSFER_PROP_TRANSFERTOACCOUNTTYPE, "TransferToAccountType",
                                                      true, 1),
      Input<T::kToBankId>(BANKTRANSFER_PROP_TRANSFERTOBANKID, "TransferToBankId"),
      Input<T::kToBranchId>(BANKTRANSFER_PROP_TRANSFERTOBRANCHID, "TransferToBranchId"),
  };
  std::vector<PropertyDef<S>> common;
  AppendCommonRows(common);
  AppendNamedRows(table, common,
                  {
                      {BANKTRANSFER_PROP_FIID, "FIId"},
                      {BANKTRANSFER_PROP_FIORGANIZATION, "FIOrganization"},
                      {BANKTRANSFER_PROP_FIREWALLAUTODETECT, "FirewallAutoDetect"},
                      {BANKTRANSFER_PROP_FIREWALLTYPE, "FirewallType"},
                      {BANKTRANSFER_PROP_FIREWALLHOST, "FirewallHost"},
                      {BANKTRANSFER_PROP_FIREWALLPASSWORD, "FirewallPassword"},
                      {BANKTRANSFER_PROP_FIREWALLPORT, "FirewallPort"},
                      {BANKTRANSFER_PROP_FIREWALLUSER, "FirewallUser"},
                      {BANKTRANSFER_PROP_FIURL, "FIUrl"},
                      {BANKTRANSFER_PROP_OFXACCESSKEY, "OFXAccessKey"},
                      {BANKTRANSFER_PROP_OFXAPPID, "OFXAppId"},
                      {BANKTRANSFER_PROP_OFXAPPVERSION, "OFXAppVersion"},
                      {BANKTRANSFER_PROP_OFXPASSWORD, "OFXPassword"},
                      {BANKTRANSFER_PROP_OFXREQUEST, "OFXRequest"},
                      {BANKTRANSFER_PROP_OFXRESPONSE, "OFXResponse"},
                      {BANKTRANSFER_PROP_OFXUSER, "OFXUser"},
                      {BANKTRANSFER_PROP_OFXVERSION, "OFXVersion"},
                      {BANKTRANSFER_PROP_SSLACCEPTSERVERCERTENCODED, "SSLAcceptServerCertEncoded"},
                      {BANKTRANSFER_PROP_SSLCERTENCODED, "SSLCertEncoded"},
                      {BANKTRANSFER_PROP_SSLCERTSTORE, "SSLCertStore"},
                      {BANKTRANSFER_PROP_SSLCERTSTOREPASSWORD, "SSLCertStorePassword"},
                      {BANKTRANSFER_PROP_SSLCERTSTORETYPE, "SSLCertStoreType"},
                      {BANKTRANSFER_PROP_SSLCERTSUBJECT, "SSLCertSubject"},
                      {BANKTRANSFER_PROP_SSLSERVERCERTENCODED, "SSLServerCertEncoded"},
                      {BANKTRANSFER_PROP_TIMEOUT, "Timeout"},
                  });
  return table;
}

std::vector<MethodDef<S>> Methods() {
  return {
      {BANKTRANSFER_METHOD_CANCELTRANSFER, "CancelTransfer",
       [](S& s, MethodCall<S>& call) { return s.CancelTransfer(call.Text(0)); }},
      {BANKTRANSFER_METHOD_CONFIG, "Config", RunConfigMethod<S>},
      {BANKTRANSFER_METHOD_MODIFYTRANSFER, "ModifyTransfer",
       [](S& s, MethodCall<S>& call) { return s.ModifyTransfer(call.Text(0)); }},
      {BANKTRANSFER_METHOD_RESET, "Reset", [](S& s, MethodCall<S>&) { return s.Reset(); }},
      // params: token; out: the server's new token in the second slot.
      {BANKTRANSFER_METHOD_SYNCHRONIZETRANSFERS, "SynchronizeTransfers",
       [](S& s, MethodCall<S>& call) {
         const char* answer = "";
         const int rc = s.SynchronizeTransfers(call.Text(0), answer);
         call.SetText(1, answer);
         return rc;
       }},
      {BANKTRANSFER_METHOD_TRANSFERFUNDS, "TransferFunds", [](S& s, MethodCall<S>&) { return s.TransferFunds(); }},
  };
}

}  // namespace

const ComponentTables<BankTransferService>& BankTransferTables() {
  static const ComponentTables<BankTransferService> tables(Properties(), Methods());
  return tables;
}

}  // namespace orvelan
