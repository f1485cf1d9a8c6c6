"""Downloads a bank statement over HTTPS and prints its transactions.
    PYTHONPATH=python ORVELAN_PASSWORD=secret python3 python_host.py https://127.0.0.1:8443/ofx bank.pem"""
import os
import sys

import orvelan  # loads liborvelan.so.3, or the library $ORVELAN_LIBRARY names

url, ca_file = sys.argv[1:3]
with orvelan.BankStatement(fi_url=url, fi_organization="Orvelan Test Bank", fi_id="9999", ofx_version="211",
                           ofx_app_id="QWIN", ofx_app_version="2700",
                           ofx_user="user", ofx_password=os.environ["ORVELAN_PASSWORD"],
                           bank_id="121000248", account_id="4412345678", start_date="01/01/2026 00:00:00") as st:
    st.config("OpenSSLCAFile=" + ca_file)
    st.on_error = lambda event: print("notice:", event.code, event.description, file=sys.stderr)
    try:
        st.get_statement()
    except orvelan.Error as e:
        sys.exit("error %d: %s" % (e.code, e.text))
    print("Account %s, ledger balance %s" % (st.account_id, st.ledger_balance))
    for tx in st.transactions:
        print("  %s %12s  %s" % (tx.date_posted, tx.amount, tx.payee_name))
