"""The Python binding against the shared library: a download from the test
bank over HTTPS, real statement files, and what a host sees of errors,
events and lifetime. ctest passes the library, the bank script and the
source directory (the corpus lies beside it) by environment."""
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import orvelan

CORPUS = os.environ.get("ORVELAN_CORPUS_DIR") or os.path.join(os.environ.get("ORVELAN_SOURCE_DIR", "."),
                                                             "..", "shared", "corpus")
PEERS_REQUIRED = bool(os.environ.get("ORVELAN_REQUIRE_PEERS"))


class DownloadTest(unittest.TestCase):
    """Against orvelan-testbank on a free loopback port, with the
    self-signed certificate it makes."""

    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp(prefix="orvelan-py-bank-")
        cls.cert, port_file = os.path.join(cls.dir, "bank.pem"), os.path.join(cls.dir, "port")
        try:
            cls.bank = subprocess.Popen([sys.executable, os.environ["ORVELAN_TESTBANK"], "--tls", "--cert-out",
                                         cls.cert, "--port-file", port_file], stdout=subprocess.DEVNULL)
            deadline = time.monotonic() + 20
            while not os.path.exists(port_file):
                if cls.bank.poll() is not None or time.monotonic() > deadline:
                    raise RuntimeError("it did not start")
                time.sleep(0.05)
        except (KeyError, OSError, RuntimeError) as e:
            cls.tearDownClass()
            if PEERS_REQUIRED:
                raise
            raise unittest.SkipTest("test bank not available: %r" % e)
        with open(port_file) as f:
            cls.url = "https://127.0.0.1:%d/ofx" % int(f.read())

    @classmethod
    def tearDownClass(cls):
        if getattr(cls, "bank", None) and cls.bank.poll() is None:
            cls.bank.terminate()
            cls.bank.wait(10)
        shutil.rmtree(cls.dir, ignore_errors=True)

    def statement(self, user="user", trusted=True):
        st = orvelan.BankStatement(fi_url=self.url, ofx_user=user, ofx_password="secret", fi_organization="Bank",
                                   fi_id="1001", ofx_app_id="QWIN", ofx_app_version="2700", ofx_version="211",
                                   bank_id="123456789", account_id="1001", start_date="20240101")
        if trusted:
            st.config("OpenSSLCAFile=" + self.cert)
        return st

    def test_statement_over_https_as_immutable_records(self):
        events = []
        with self.statement() as st:
            st.on_connection_status = events.append
            st.get_statement()
            self.assertEqual(len(st.transactions), 3)
            self.assertEqual(st.transactions[:], list(st.transactions))
            self.assertIn("<STMTTRN>", st.transactions[-1].aggregate)
            with self.assertRaises(AttributeError):
                st.transactions[0].amount = "1.00"
            with self.assertRaises(IndexError):
                st.transactions[3]
            self.assertIsInstance(events[0], orvelan.ConnectionStatusEvent)
            # A handler's exception cannot cross the C callback: the call raises it.
            st.on_connection_status = lambda event: {}["from the handler"]
            self.assertRaises(KeyError, st.get_statement)

    def test_untrusted_certificate_is_the_handlers_decision(self):
        for verdict, fails in [(None, True), (False, True), (True, False)]:
            seen = []

            def decide(event):
                seen.append(event)
                return verdict
            with self.subTest(verdict=verdict), self.statement(trusted=False) as st:
                st.on_ssl_server_authentication = decide
                if fails:
                    self.assertRaises(orvelan.Error, st.get_statement)
                else:
                    st.get_statement()
                self.assertTrue(seen[0].cert_encoded)
                self.assertIn("Orvelan Test Bank", seen[0].cert_subject)
                self.assertFalse(seen[0].accept)

    def test_failures_raise_error_with_code_and_text(self):
        cases = [("user", "wrong", 2001, "OFX server error (15500)"),
                 ("error2000", "secret", 2001, "OFX server error (2000)"),
                 ("", "secret", 2000, "Missing required field: ")]
        for user, password, code, text in cases:
            with self.subTest(user=user), self.statement(user) as st:
                st.ofx_password = password
                with self.assertRaises(orvelan.Error) as raised:
                    st.get_statement()
                self.assertEqual(raised.exception.code, code)
                self.assertTrue(raised.exception.text.startswith(text), raised.exception.text)


@unittest.skipUnless(os.path.isdir(CORPUS), "no corpus directory beside the repository")
class CorpusTest(unittest.TestCase):
    # Files with bank or card statements: the records must be every
    # <STMTTRN> in the file, in order.
    STATEMENTS = [("ofxtools-stmtrs.ofx", orvelan.BankStatement),
                  ("ofxparse-checking.ofx", orvelan.BankStatement),
                  ("libofx-ofx_spec160_stmtrs_example.sgml", orvelan.BankStatement),
                  ("ofxparse-anzcc.ofx", orvelan.CCStatement)]

    def test_statement_files_read_every_transaction(self):
        for name, component in self.STATEMENTS:
            path = os.path.join(CORPUS, name)
            with self.subTest(name), component() as st:
                st.read_ofx_data_file(path)
                with open(path, encoding="latin-1") as f:
                    text = f.read()
                self.assertEqual(len(st.transactions), text.count("<STMTTRN>"))
                fitids = [tx.fitid for tx in st.transactions]
                self.assertEqual(fitids, sorted(fitids, key=text.index))

    def test_error_status_file_raises_the_servers_text(self):
        with orvelan.BankStatement() as st, self.assertRaises(orvelan.Error) as raised:
            st.read_ofx_data_file(os.path.join(CORPUS, "ofxparse-error_message.ofx"))
        self.assertEqual(raised.exception.code, 2001)
        self.assertIn("General Server Error", raised.exception.text)


class ComponentTest(unittest.TestCase):
    def test_values_cross_by_kind(self):
        with orvelan.BankStatement() as st:
            self.assertEqual((st.ofx_version, st.timeout, st.ssl_cert_store), ("102", 60, b"MY"))
            st.firewall_type = 2  # a SOCKS 4 tunnel defaults its port
            st.include_images = True
            st.ssl_accept_server_cert_encoded = b"\x00\x01"
            st.timeout = -1
            self.assertEqual((st.firewall_port, st.include_images, st.ssl_accept_server_cert_encoded, st.timeout),
                             (1080, True, b"\x00\x01", -1))
            with self.assertRaises(AttributeError):
                st.on_eror = print
            with self.assertRaises(AttributeError):
                st.ledger_balance = "1.00"

    def test_indexed_writes_and_their_failures(self):
        with orvelan.FIProfile() as profile:
            profile.challenge_question_count = 2
            profile.challenge_questions.set(1, answer="rex")
            self.assertEqual(profile.challenge_questions[1].answer, "rex")
            with self.assertRaises(orvelan.Error) as raised:
                profile.challenge_questions.set(2, answer="blue")
            self.assertEqual(raised.exception.code, 432)
            with self.assertRaises(AttributeError):
                profile.challenge_questions.set(0, label="mine")

    def test_aggregate_children_and_a_closed_component(self):
        with orvelan.OFXAggregate() as aggregate:
            aggregate.aggregate = "<STMTTRN><TRNAMT>1.00</TRNAMT><NAME>A</NAME></STMTTRN>"
            aggregate.element_path = "/STMTTRN"
            self.assertEqual([(c.name, c.text) for c in aggregate.children], [("TRNAMT", "1.00"), ("NAME", "A")])
            self.assertTrue(aggregate.path_exists("/STMTTRN/NAME"))
        with self.assertRaises(ValueError):
            aggregate.element_text
        aggregate.close()

    def test_component_events_are_named_from_the_header(self):
        for component, handlers in [(orvelan.BankTransfer, ["on_sync_transfers"]),
                                    (orvelan.BillPayment, ["on_sync_payees", "on_sync_payments"])]:
            self.assertEqual([n for n in dir(component) if n.startswith("on_sync")], handlers)


if __name__ == "__main__":
    unittest.main()
