#pragma once
#include <vector>

#include "core/property_table.h"
#include "services/common_properties.h"
#include "services/statement_service_base.h"

// The property rows of the statement family: the common OFX rows and every
// row over StatementServiceBase, numbered 0. A statement component picks its
// own by name (AppendNamedRows) and adds the few rows over its own service.
namespace orvelan {

template <class S>
std::vector<PropertyDef<S>> StatementRows() {
  using P = PropertyBuilder<S>;
  using B = StatementServiceBase;
  using T = StatementTransaction;
  using C = ClosingInfo;
  std::vector<PropertyDef<S>> pool;
  AppendCommonRows(pool);
  const PropertyDef<S> rows[] = {
      P::template Text<&B::StartDate, &B::SetStartDate>(0, "StartDate", ""),
      P::template Text<&B::EndDate, &B::SetEndDate>(0, "EndDate", ""),
      P::template Text<&B::AvailableBalance>(0, "AvailableBalance"),
      P::template Text<&B::AvailableBalanceDate>(0, "AvailableBalanceDate"),
      P::template Text<&B::LedgerBalance>(0, "LedgerBalance"),
      P::template Text<&B::LedgerBalanceDate>(0, "LedgerBalanceDate"),
      P::template Text<&B::CurrencyCode>(0, "CurrencyCode"),

      P::template Int<&B::TxCount>(0, "TxCount"),
      P::template IndexedText<&B::TxAggregate, &B::CheckTxIndex>(0, "TxAggregate"),
      P::template IndexedText<&B::TxAmount<T::kAmount>, &B::CheckTxIndex>(0, "TxAmount"),
      P::template IndexedText<&B::TxText<T::kCheckNumber>, &B::CheckTxIndex>(0, "TxCheckNumber"),
      P::template IndexedText<&B::TxDate<T::kDateInitiated>, &B::CheckTxIndex>(0, "TxDateInitiated"),
      P::template IndexedText<&B::TxDate<T::kDatePosted>, &B::CheckTxIndex>(0, "TxDatePosted"),
      P::template IndexedText<&B::TxAmount<T::kEscrowTotal>, &B::CheckTxIndex>(0, "TxEscrowTotal"),
      P::template IndexedText<&B::TxText<T::kFITID>, &B::CheckTxIndex>(0, "TxFITID"),
      P::template IndexedText<&B::TxText<T::kImageRef>, &B::CheckTxIndex>(0, "TxImageRef"),
      P::template IndexedText<&B::TxText<T::kImageRefType>, &B::CheckTxIndex>(0, "TxImageRefType"),
      P::template IndexedText<&B::TxAmount<T::kInterestAmount>, &B::CheckTxIndex>(0, "TxInterestAmount"),
      P::template IndexedText<&B::TxText<T::kMemo>, &B::CheckTxIndex>(0, "TxMemo"),
      P::template IndexedText<&B::TxText<T::kPayeeName>, &B::CheckTxIndex>(0, "TxPayeeName"),
      P::template IndexedText<&B::TxAmount<T::kPrincipalAmount>, &B::CheckTxIndex>(0, "TxPrincipalAmount"),
      P::template IndexedInt<&B::TxType, &B::CheckTxIndex>(0, "TxType"),
      P::template IndexedText<&B::TxTypeDescription, &B::CheckTxIndex>(0, "TxTypeDescription"),

      P::template Int<&B::ClosingInfoCount>(0, "ClosingInfoCount"),
      P::template IndexedText<&B::ClosingInfoAggregate, &B::CheckClosingIndex>(0, "ClosingInfoAggregate"),
      P::template IndexedText<&B::ClosingAmount<C::kBalanceClose>, &B::CheckClosingIndex>(0, "ClosingInfoBalanceClose"),
      P::template IndexedText<&B::ClosingAmount<C::kBalanceOpen>, &B::CheckClosingIndex>(0, "ClosingInfoBalanceOpen"),
      P::template IndexedText<&B::ClosingAmount<C::kCreditLimit>, &B::CheckClosingIndex>(0, "ClosingInfoCreditLimit"),
      P::template IndexedText<&B::ClosingDate<C::kDateClose>, &B::CheckClosingIndex>(0, "ClosingInfoDateClose"),
      P::template IndexedText<&B::ClosingDate<C::kDateDue>, &B::CheckClosingIndex>(0, "ClosingInfoDateDue"),
      P::template IndexedText<&B::ClosingDate<C::kDateEnd>, &B::CheckClosingIndex>(0, "ClosingInfoDateEnd"),
      P::template IndexedText<&B::ClosingDate<C::kDateOpen>, &B::CheckClosingIndex>(0, "ClosingInfoDateOpen"),
      P::template IndexedText<&B::ClosingDate<C::kDateStart>, &B::CheckClosingIndex>(0, "ClosingInfoDateStart"),
      P::template IndexedText<&B::ClosingText<C::kFITID>, &B::CheckClosingIndex>(0, "ClosingInfoFITID"),
      P::template IndexedText<&B::ClosingText<C::kImageRef>, &B::CheckClosingIndex>(0, "ClosingInfoImageRef"),
      P::template IndexedText<&B::ClosingText<C::kImageRefType>, &B::CheckClosingIndex>(0, "ClosingInfoImageRefType"),
      P::template IndexedText<&B::ClosingAmount<C::kPaymentDue>, &B::CheckClosingIndex>(0, "ClosingInfoPaymentDue"),
      P::template IndexedText<&B::ClosingAmount<C::kTotalCredits>, &B::CheckClosingIndex>(0, "ClosingInfoTotalCredits"),
      P::template IndexedText<&B::ClosingAmount<C::kTotalDebits>, &B::CheckClosingIndex>(0, "ClosingInfoTotalDebits"),
      P::template IndexedText<&B::ClosingAmount<C::kTotalFees>, &B::CheckClosingIndex>(0, "ClosingInfoTotalFees"),
      P::template IndexedText<&B::ClosingAmount<C::kTotalInterest>, &B::CheckClosingIndex>(0,
                                                                                           "ClosingInfoTotalInterest"),
  };
  pool.insert(pool.end(), std::begin(rows), std::end(rows));
  return pool;
}

// The ids of the methods every statement component has.
struct StatementMethodIds {
  int config, get_closing_info, get_image, get_statement, read_ofx_data_file, reset, write_ofx_data_file;
};

template <class S>
std::vector<MethodDef<S>> StatementMethods(const StatementMethodIds& ids) {
  return {
      {ids.config, "Config", RunConfigMethod<S>},
      {ids.get_closing_info, "GetClosingInfo", [](S& s, MethodCall<S>&) { return s.GetClosingInfo(); }},
      // params: reference, reference type; out: the image bytes in the third
      // slot with their length.
      {ids.get_image, "GetImage",
       [](S& s, MethodCall<S>& call) {
         const char* data = "";
         int32_t length = 0;
         const int rc = s.GetImage(call.Text(0), call.Text(1), data, length);
         call.SetBytes(2, data, length);
         return rc;
       }},
      {ids.get_statement, "GetStatement", [](S& s, MethodCall<S>&) { return s.GetStatement(); }},
      {ids.read_ofx_data_file, "ReadOFXDataFile",
       [](S& s, MethodCall<S>& call) { return s.ReadOFXDataFile(call.Text(0)); }},
      {ids.reset, "Reset", [](S& s, MethodCall<S>&) { return s.Reset(); }},
      {ids.write_ofx_data_file, "WriteOFXDataFile",
       [](S& s, MethodCall<S>& call) { return s.WriteOFXDataFile(call.Text(0)); }},
  };
}

}  // namespace orvelan
