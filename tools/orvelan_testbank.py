#!/usr/bin/env python3
r"""orvelan-testbank: a sandbox OFX bank to try an OFX client against.

It answers OFX 1.x (SGML) and 2.x (XML) requests posted to any path, in the
request's dialect, like a strict bank: anything but an application/x-ofx POST
with a well-formed header block, every end tag in the 2.x dialect, SONRQ first
with its children in order, TRNUIDs of the form 8-4-4-4-4-8 or 8-4-4-4-12 (a
UUID) lowercase hex, only ...MSGSRQV1/2 message sets, and statement requests whose elements are in
order, present when required and well formed (dates, Y/N flags, account type)
gets HTTP 400 with the reason.

It serves bank (BANKMSGSRQV1: STMTRQ, STMTENDRQ), credit card
(CREDITCARDMSGSRQV1: CCSTMTRQ, CCSTMTENDRQ) and loan (LOANMSGSRQV1: LOANSTMTRQ,
LOANSTMTENDRQ) statements, the profile (PROFMSGSRQV1: PROFRQ, answered in full
while its DTPROFUP is older than the profile's, else status 1), and the signup
requests (SIGNUPMSGSRQV1: ACCTINFORQ lists a bank, a card, an investment and a
loan account with a fresh DTACCTUP; sending that DTACCTUP back gets no
accounts; ENROLLRQ answers a temporary password). The password is "secret" (--password), else sign-on
status 15500. The USERID chooses what happens, for every kind of account:
  user          a statement with 3 transactions, 5 for a card (so does any
                other USERID)
  user<N>       a statement with N transactions (at most 200000)
  error<CODE>   every transaction answered with status CODE, severity ERROR
                (an ACCTID error<CODE> does that to its own transaction only)
  warn          status 2028, severity WARN, with the statement
  mfa           sign-on status 3000 until MFA13 "blue" and MFA107 "rex" are
                answered; an MFACHALLENGETRNRQ gets the two questions; the
                answers earn an ACCESSKEY that later sign-ons send instead
  accesskey     the sign-on carries an ACCESSKEY
  http<CODE>    HTTP status CODE (e.g. http500, http503) with an HTML page
  stall         never answers, and holds the connection open
  badofx        a truncated OFX document
  lostsync      every synchronization by TOKEN answers LOSTSYNC Y and no
                records (REFRESH Y still answers)
Statements and closing information (one closing per calendar month of the
range; without DTSTART the month of DTEND and the one before) are derived from
the account and dates of the request: card purchases, payments, fees and
interest with the minimum payment, finance charge and credit limit of each
closing; loan payments split into principal, interest and escrow, with the
next payment (LOANPMT) in each closing. INCTRANIMG Y or INCSTMTIMG Y adds an
image reference to each transaction or closing. An image request (IMAGEREF)
answers a 1x1 PNG whose tEXt comment is the reference, or "OFX-STATUS=16512"
for the reference "missing".

Investment statements (INVSTMTMSGSRQV1: INVSTMTRQ, INVSTMTENDRQ) hold 13 trades,
income, reinvestment, transfer, split and cash records by default, a position in
each kind of security, balances of each BALTYPE, two open orders and, in
SECLISTMSGSRSV1, the securities they name.

Money moves, and the bank remembers it for the run, per USERID: transfers
within the bank (BANKMSGSRQV1: INTRATRNRQ, INTRASYNCRQ) and to other banks
(INTERXFERMSGSRQV1: INTERTRNRQ, INTERSYNCRQ), bill payments and the payee list
(BILLPAYMSGSRQV1: PMTTRNRQ, PMTINQTRNRQ, PMTSYNCRQ, PAYEETRNRQ, PAYEESYNCRQ).
An add gets a server id (SRVRTID XF000001 for a transfer, BP000002 for a
payment; PAYEELSTID PL00003 for a payee); modify, cancel and delete name it.
A transfer without DTDUE or due today posts at once (POSTEDON) within the
bank, in two days to another bank; later ones wait (WILLPROCESSON) until
then. A payment due today is PROCESSEDON, a later one WILLPROCESSON; one to a
payee of the bank's list (PAYEEID ELEC01 or WATER02) is paid electronically,
any other by check (CHECKNUM). Posted, processed, cancelled or unknown
records are refused with the OFX status for it (2016, 10514, 2017, 2018,
10519), as are amounts not above zero (2012) and past due dates (2014).
Every change counts up the user's token; a synchronization answers, for its
account, the transaction responses sent after its TOKEN, in order, with the
newest token; REFRESH Y answers every record once as it stands now; an
unknown token gets LOSTSYNC Y.

With --log every POST is appended to FILE as
    --- request <seq> status=<http status, 0 for stall> length=<n>\n<n body bytes>\n
and one line per request goes to standard output.

Examples:
    orvelan-testbank --port 8080          # http://127.0.0.1:8080/ofx
    orvelan-testbank --tls --cert-out bank.pem
                                          # https, trust bank.pem in the client
"""

import argparse
import datetime
import html
import http.server
import os
import re
import select
import shutil
import signal
import ssl
import struct
import subprocess
import sys
import tempfile
import threading
import types
import zlib

ACCESS_KEY = "orvelan-access-key"
MFA_QUESTIONS = [("MFA13", "What is your favourite colour?", "blue"),
                 ("MFA107", "What was your first pet's name?", "rex")]
PAYEES = ["Grocery Outlet", "City Water", "Joe's Bar & Grill", "Payroll ACME <Ltd>", "Transfer from savings"]
ZONE = "[-5:EST]"
MAX_TRANSACTIONS = 200000

SONRQ_ORDER = ["DTCLIENT", "USERID", "USERPASS", "LANGUAGE", "FI", "SESSCOOKIE", "APPID", "APPVER",
               "CLIENTUID", "USERCRED1", "USERCRED2", "AUTHTOKEN", "ACCESSKEY", "MFACHALLENGEA"]
SONRQ_REQUIRED = ["DTCLIENT", "USERID", "USERPASS", "LANGUAGE", "FI", "APPID", "APPVER"]
# The header fields in order, each with the form of its value.
SGML_HEADER = [("OFXHEADER", "100"), ("DATA", "OFXSGML"), ("VERSION", r"1\d\d"), ("SECURITY", "NONE"),
               ("ENCODING", "USASCII"), ("CHARSET", "1252"), ("COMPRESSION", "NONE"), ("OLDFILEUID", ".+"),
               ("NEWFILEUID", ".+")]
XML_HEADER_FIELDS = [("OFXHEADER", "200"), ("VERSION", r"2\d\d"), ("SECURITY", "NONE"), ("OLDFILEUID", ".*"),
                     ("NEWFILEUID", ".*")]

# The client's own 37-character form, or a UUID as strict servers want it.
TRNUID_FORM = re.compile(r"^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-(?:[0-9a-f]{4}-[0-9a-f]{8}|[0-9a-f]{12})$")
OFX_DATE_FORM = re.compile(r"^\d{8}(\d{4}(\d{2}(\.\d{3})?)?)?(\[[+-]?\d+(\.\d+)?(:[A-Za-z ]*)?\])?$")
XML_HEADER = re.compile(r'^(<\?xml[^>]*\?>\s*)?<\?OFX((?:\s+[A-Z]+="[^"]*")*)\s*\?>\s*')
XML_ATTRIBUTE = re.compile(r'([A-Z]+)="([^"]*)"')
TOKEN = re.compile(r"<(/?)([A-Za-z0-9_.]+)>|<|[^<]+")


class BadRequest(Exception):
    pass


class Node:
    __slots__ = ("name", "value", "children")

    def __init__(self, name, value=None):
        self.name = name
        self.value = value
        self.children = []

    def child(self, name):
        for c in self.children:
            if c.name == name:
                return c
        return None

    def find(self, path):
        node = self
        for part in path.split("/"):
            node = node.child(part) if node is not None else None
        return node

    def text(self, path, default=""):
        node = self.find(path)
        return node.value if node is not None and node.value is not None else default

    def walk(self):
        yield self
        for c in self.children:
            yield from c.walk()


# ---------------------------------------------------------------- reading


def read_header(text):
    """Returns (dialect, version, rest of the text)."""
    if text.startswith("OFXHEADER:"):
        end = text.find("\r\n\r\n")
        if end < 0:
            raise BadRequest("OFX 1.x header does not end with a blank line (CRLF CRLF)")
        lines = [line.partition(":") for line in text[:end].split("\r\n")]
        if [key for key, _, _ in lines] != [key for key, _ in SGML_HEADER]:
            raise BadRequest("OFX 1.x header fields must be %s, each ending with CRLF" %
                             ",".join(key for key, _ in SGML_HEADER))
        for (key, _, value), (_, form) in zip(lines, SGML_HEADER):
            if not re.fullmatch(form, value):
                raise BadRequest("OFX 1.x header %s must match %s, got %r" % (key, form, value))
        return "sgml", lines[2][2], text[end + 4:]
    m = XML_HEADER.match(text)
    if m:
        attributes = dict(XML_ATTRIBUTE.findall(m.group(2)))
        for key, form in XML_HEADER_FIELDS:
            if key not in attributes or not re.fullmatch(form, attributes[key]):
                raise BadRequest("OFX 2.x header %s must match %s, got %r" % (key, form, attributes.get(key)))
        return "xml", attributes["VERSION"], text[m.end():]
    raise BadRequest("no OFX header: the body must begin with OFXHEADER:100 or <?OFX OFXHEADER=\"200\" ...?>")


def read_tree(text, dialect):
    tokens = [(m.group(1), m.group(2), m.group(0)) for m in TOKEN.finditer(text)]
    root = Node("")
    stack = [root]
    i = 0
    while i < len(tokens):
        slash, name, raw = tokens[i]
        i += 1
        if name is None:
            if raw == "<":
                raise BadRequest("malformed tag near %r" % text[text.find("<", 0):][:20])
            if raw.strip():
                raise BadRequest("text %r outside a leaf element" % raw.strip()[:30])
            continue
        if slash:
            if stack[-1] is root or stack[-1].name != name:
                open_name = stack[-1].name if stack[-1] is not root else "nothing"
                raise BadRequest("end tag </%s> does not close <%s>" % (name, open_name))
            stack.pop()
            continue
        node = Node(name)
        stack[-1].children.append(node)
        if i < len(tokens) and tokens[i][1] is None and tokens[i][2] != "<" and tokens[i][2].strip():
            node.value = html.unescape(tokens[i][2].strip())
            i += 1
            if i < len(tokens) and tokens[i][0] and tokens[i][1] == name:
                i += 1
            elif dialect == "xml":
                raise BadRequest("element <%s> has no end tag" % name)
        elif i < len(tokens) and tokens[i][0] and tokens[i][1] == name:
            node.value = ""  # an empty leaf written as <X></X>
            i += 1
        else:
            stack.append(node)
    if len(stack) > 1:
        raise BadRequest("<%s> is never closed" % stack[-1].name)
    if len(root.children) != 1 or root.children[0].name != "OFX":
        raise BadRequest("the body must be one <OFX> element")
    return root.children[0]


def check_signon(ofx):
    if not ofx.children or ofx.children[0].name != "SIGNONMSGSRQV1":
        raise BadRequest("SIGNONMSGSRQV1 must be the first element of <OFX>")
    signon = ofx.children[0]
    if not signon.children or signon.children[0].name != "SONRQ":
        raise BadRequest("SONRQ must be the first element of SIGNONMSGSRQV1")
    sonrq = signon.children[0]
    names = [c.name for c in sonrq.children]
    ranks = [SONRQ_ORDER.index(n) if n in SONRQ_ORDER else -1 for n in names]
    if -1 in ranks or ranks != sorted(ranks):
        raise BadRequest("SONRQ elements unknown or out of order: %s" % ",".join(names))
    for name in SONRQ_ORDER[:-1]:  # MFACHALLENGEA may repeat
        count = names.count(name)
        if count > 1 or (count == 0 and name in SONRQ_REQUIRED):
            raise BadRequest("SONRQ lacks <%s>" % name if count == 0 else "<%s> appears twice in SONRQ" % name)
    for name in ("USERID", "USERPASS", "APPID", "APPVER"):
        if not sonrq.text(name):
            raise BadRequest("SONRQ <%s> is empty" % name)
    if not OFX_DATE_FORM.match(sonrq.text("DTCLIENT")):
        raise BadRequest("DTCLIENT %r is not an OFX date" % sonrq.text("DTCLIENT"))
    if not re.match(r"^[A-Z]{3}$", sonrq.text("LANGUAGE")):
        raise BadRequest("LANGUAGE %r is not three capitals" % sonrq.text("LANGUAGE"))
    fi = sonrq.child("FI")
    if [c.name for c in fi.children] not in (["ORG"], ["ORG", "FID"]):
        raise BadRequest("FI must hold ORG and an optional FID")
    if not all(c.value for c in fi.children):
        raise BadRequest("FI holds an empty element")
    for answer in sonrq.children:
        if answer.name == "MFACHALLENGEA" and [c.name for c in answer.children] != ["MFAPHRASEID", "MFAPHRASEA"]:
            raise BadRequest("MFACHALLENGEA must hold MFAPHRASEID and MFAPHRASEA")
    for node in ofx.walk():
        if node.name == "TRNUID" and not TRNUID_FORM.match(node.value or ""):
            raise BadRequest("TRNUID %r is neither 8-4-4-4-4-8 nor 8-4-4-4-12 lowercase hex digits" % node.value)
    for node in ofx.children[1:]:
        if not re.match(r"^[A-Z0-9]+MSGSRQV[12]$", node.name):
            raise BadRequest("<%s> is not a request message set" % node.name)
    return sonrq


# ---------------------------------------------------------------- writing


# SGML lets a bank close any element; this one closes the leaves that common
# client dictionaries list among the aggregates (a closing's DTOPEN), as
# careful banks do, so that 1.x closing information reads everywhere.
SGML_CLOSED_LEAVES = {"DTOPEN"}


def render(node, dialect, out):
    """node: (name, text) for a leaf, (name, [children]) for an aggregate."""
    name, content = node
    if isinstance(content, list):
        out.append("<%s>\r\n" % name)
        for c in content:
            render(c, dialect, out)
        out.append("</%s>\r\n" % name)
    else:
        closed = dialect == "xml" or name in SGML_CLOSED_LEAVES
        end = "</%s>" % name if closed else ""
        out.append("<%s>%s%s\r\n" % (name, html.escape(content, quote=False), end))


def document(dialect, version, body):
    out = []
    if dialect == "xml":
        out.append('<?xml version="1.0" encoding="UTF-8" standalone="no"?>\r\n'
                   '<?OFX OFXHEADER="200" VERSION="%s" SECURITY="NONE" OLDFILEUID="NONE" NEWFILEUID="NONE"?>\r\n'
                   % version)
    else:
        out.append("OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:%s\r\nSECURITY:NONE\r\nENCODING:USASCII\r\n"
                   "CHARSET:1252\r\nCOMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n" % version)
    render(("OFX", body), dialect, out)
    return "".join(out).encode("latin-1", "replace")


def status(code=0, severity="INFO", message=None):
    parts = [("CODE", str(code)), ("SEVERITY", severity)]
    if message:
        parts.append(("MESSAGE", message))
    return ("STATUS", parts)


def now_stamp():
    return datetime.datetime.now(datetime.timezone.utc).strftime("%Y%m%d%H%M%S.000[0:GMT]")


def money(cents):
    return "%s%d.%02d" % ("-" if cents < 0 else "", abs(cents) // 100, abs(cents) % 100)


def day_of(text, fallback):
    try:
        return datetime.datetime.strptime(text[:8], "%Y%m%d").date()
    except ValueError:
        return fallback


def stamp(day, time="120000"):
    return day.strftime("%Y%m%d") + time + ".000" + ZONE


class Scenario:
    def __init__(self, userid):
        self.name = userid
        self.userid = userid
        self.transactions = None  # the message set's own number
        self.trn_status = None
        self.http_status = 0
        m = re.match(r"^(user|error|http)(\d+)$", userid)
        if m and (m.group(1) != "http" or 400 <= int(m.group(2)) <= 599):
            self.name = m.group(1)
            if self.name == "user":
                self.transactions = min(int(m.group(2)), MAX_TRANSACTIONS)
            elif self.name == "error":
                self.trn_status = status(int(m.group(2)), "ERROR")
            else:
                self.http_status = int(m.group(2))
        elif userid == "warn":
            self.trn_status = status(2028, "WARN", "Some request elements were not recognized and were ignored.")


# ---------------------------------------------------------------- statements

OFX_DATE = OFX_DATE_FORM.pattern[1:-1]
YES_NO = "[YN]"
RULE_NAMES = {OFX_DATE: "an OFX date", YES_NO: "Y or N"}
INCTRAN = [("DTSTART", False, OFX_DATE), ("DTEND", False, OFX_DATE), ("INCLUDE", True, YES_NO)]


def check_aggregate(node, form):
    """form lists the children (name, required, rule) in their order; a rule is
    a regular expression for a leaf's value or the form of an aggregate."""
    names = [c.name for c in node.children]
    order = [name for name, _, _ in form]
    ranks = [order.index(n) if n in order else -1 for n in names]
    if -1 in ranks or ranks != sorted(ranks) or len(set(names)) != len(names):
        raise BadRequest("<%s> holds %s; it takes %s, in that order, each at most once" %
                         (node.name, ",".join(names) or "nothing", ",".join(order)))
    for name, required, rule in form:
        child = node.child(name)
        if child is None:
            if required:
                raise BadRequest("<%s> lacks <%s>" % (node.name, name))
        elif isinstance(rule, list):
            if child.value is not None:
                raise BadRequest("<%s> is an aggregate, not a value" % name)
            check_aggregate(child, rule)
        elif child.value is None:
            raise BadRequest("<%s> holds a value, not elements" % name)
        elif (child.value or required) and not re.fullmatch(rule, child.value):
            raise BadRequest("<%s> %r is not %s" % (name, child.value, RULE_NAMES.get(rule, "of the form " + rule)))


class Statements:
    """One statement message set. Its requests and answers share one shape, so
    a message set declares only its names and what its records hold: the
    transaction request <P>STMTTRNRQ holds <P>STMTRQ and answers <P>STMTRS,
    <P>STMTENDTRNRQ holds <P>STMTENDRQ and answers <P>STMTENDRS."""
    prefix = ""
    message_set = "BANKMSGSRQV"  # V1 or V2
    account = "BANKACCTFROM"
    account_fields = []          # (name, required, rule)
    transaction_list = "BANKTRANLIST"
    transaction = "STMTTRN"
    closing = "CLOSING"
    transactions = 3             # for a USERID without a count

    # Per message set: opening state, the record bodies, the balances after the list.
    def begin(self, ctx):
        pass

    def entry(self, ctx, i, count, day, fitid):
        raise NotImplementedError

    def balances(self, ctx):
        raise NotImplementedError

    def closing_record(self, ctx, month, last, following):
        raise NotImplementedError

    def requests(self):
        """{transaction request name: (request name, response name, closing?)}"""
        p = self.prefix
        return {p + "STMTTRNRQ": (p + "STMTRQ", p + "STMTRS", False),
                p + "STMTENDTRNRQ": (p + "STMTENDRQ", p + "STMTENDRS", True)}

    def answer(self, trnrq, rq, scenario):
        _, rs_name, closing = self.requests()[trnrq.name]
        return (rs_name, (self.closing_answer if closing else self.statement_answer)(rq, scenario))

    def check(self, trnrq, message_set):
        if message_set.name[:-1] != self.message_set:
            raise BadRequest("<%s> belongs in %s1, not in %s" % (trnrq.name, self.message_set, message_set.name))
        rq_name, _, closing = self.requests()[trnrq.name]
        account = (self.account, True, self.account_fields)
        if closing:
            rq_form = [account, ("DTSTART", False, OFX_DATE), ("DTEND", False, OFX_DATE),
                       ("INCSTMTIMG", False, YES_NO)]
        else:
            rq_form = [account, ("INCTRAN", False, INCTRAN), ("INCLUDEPENDING", False, YES_NO),
                       ("INCTRANIMG", False, YES_NO)]
        check_aggregate(trnrq, [("TRNUID", True, TRNUID_FORM.pattern[1:-1]), ("CLTCOOKIE", False, ".+"),
                                ("TAN", False, ".+"), (rq_name, True, rq_form)])
        return trnrq.child(rq_name)

    def context(self, rq, scenario, start, end):
        ctx = types.SimpleNamespace(start=start, end=end, total=0)
        ctx.account = [(c.name, c.value) for c in rq.child(self.account).children]
        ctx.fields = dict(ctx.account)
        ctx.id = ctx.fields.get("ACCTID", ctx.fields.get("LOANACCTID", ""))
        ctx.seed = sum(ctx.id.encode()) + sum(ctx.fields.get("BANKID", "").encode())
        ctx.count = scenario.transactions if scenario.transactions is not None else self.transactions
        self.begin(ctx)
        return ctx

    def statement_answer(self, rq, scenario):
        inctran = rq.child("INCTRAN")
        dates = inctran if inctran is not None else rq
        end = day_of(dates.text("DTEND"), datetime.date.today())
        ctx = self.context(rq, scenario, day_of(dates.text("DTSTART"), end - datetime.timedelta(days=30)), end)
        images = rq.text("INCTRANIMG") == "Y"
        records = []
        span = (ctx.end - ctx.start).days
        for i in range(ctx.count):
            day = ctx.start + datetime.timedelta(days=(span * (i + 1)) // (ctx.count + 1))
            fitid = "%s-%s-%05d" % (ctx.id, day.strftime("%Y%m%d"), i + 1)
            record = self.entry(ctx, i, ctx.count, day, fitid)
            if images:
                record.append(image_data("img-" + fitid))
            records.append((self.transaction, record))
        body = [("CURDEF", "USD"), (self.account, ctx.account)]
        if rq.text("INCTRAN/INCLUDE") == "Y":
            body.append((self.transaction_list, [("DTSTART", dates.text("DTSTART") or stamp(ctx.start, "000000")),
                                                 ("DTEND", dates.text("DTEND") or stamp(ctx.end, "235959"))] + records))
        return body + self.balances(ctx)

    def closing_answer(self, rq, scenario):
        """One closing per calendar month of the range; without DTSTART, the
        month of DTEND and the one before."""
        end = day_of(rq.text("DTEND"), datetime.date.today())
        start = day_of(rq.text("DTSTART"), (end.replace(day=1) - datetime.timedelta(days=1)).replace(day=1))
        ctx = self.context(rq, scenario, start, end)
        images = rq.text("INCSTMTIMG") == "Y"
        closings = []
        month = datetime.date(start.year, start.month, 1)
        while month <= end and len(closings) < 24:
            following = datetime.date(month.year + month.month // 12, month.month % 12 + 1, 1)
            last = following - datetime.timedelta(days=1)
            fitid = "%s-%s-%s" % (self.closing[:2], ctx.id, month.strftime("%Y%m"))
            record = [("FITID", fitid), ("DTOPEN", stamp(month, "000000")), ("DTCLOSE", stamp(last, "235959")),
                      ("DTNEXT", stamp(following, "000000"))] + self.closing_record(ctx, month, last, following)
            record += [("DTPOSTSTART", stamp(month, "000000")), ("DTPOSTEND", stamp(last, "235959"))]
            if images:
                record.append(image_data("stmt-" + fitid))
            closings.append((self.closing, record))
            month = following
        return [("CURDEF", "USD"), (self.account, ctx.account)] + closings


def image_data(name):
    return ("IMAGEDATA", [("IMAGETYPE", "STATEMENT"), ("IMAGEREF", name + ".png"), ("IMAGEREFTYPE", "OPAQUE")])


def balance(name, cents, day):
    return (name, [("BALAMT", money(cents)), ("DTASOF", stamp(day, "235959"))])


class BankStatements(Statements):
    # The fields stay optional, as they always were here: minimal clients post a bare BANKID.
    account_fields = [("BANKID", False, r"[0-9A-Za-z]{1,9}"), ("BRANCHID", False, ".{1,22}"),
                      ("ACCTID", False, ".{1,22}"), ("ACCTTYPE", False, "CHECKING|SAVINGS|MONEYMRKT|CREDITLINE|CD"),
                      ("ACCTKEY", False, ".{1,22}")]

    def begin(self, ctx):
        ctx.balance = 100000

    def entry(self, ctx, i, count, day, fitid):
        cents = (ctx.seed * 7919 + i * 104729) % 200001 - 100000
        kind = "CHECK" if i % 5 == 4 else ("CREDIT" if cents > 0 else "DEBIT")
        if kind == "CHECK" and cents > 0:
            cents = -cents
        ctx.total += cents
        t = [("TRNTYPE", kind), ("DTPOSTED", stamp(day)), ("DTUSER", stamp(day, "000000")),
             ("TRNAMT", money(cents)), ("FITID", fitid)]
        if kind == "CHECK":
            t.append(("CHECKNUM", str(1000 + i)))
        t.append(("NAME", PAYEES[(ctx.seed + i) % len(PAYEES)]))
        if i % 2 == 0:
            t.append(("MEMO", "Transaction %d of %d" % (i + 1, count)))
        return t

    def balances(self, ctx):
        ledger = ctx.balance + ctx.total
        return [balance("LEDGERBAL", ledger, ctx.end), balance("AVAILBAL", ledger - 2500, ctx.end)]

    def closing_record(self, ctx, month, last, following):
        credits = (ctx.seed * 31 + month.month * 1013) % 50000
        debits = (month.toordinal() * 17) % 40000
        fees, interest = 500, 12
        close = ctx.balance + credits - debits - fees + interest
        record = [("BALOPEN", money(ctx.balance)), ("BALCLOSE", money(close)), ("DEPANDCREDIT", money(credits)),
                  ("CHKANDDEB", money(-debits)), ("TOTALFEES", money(-fees)), ("TOTALINT", money(interest))]
        ctx.balance = close
        return record


MERCHANTS = ["Corner Bakery", "Shell Oil 0457", "Online Books & Music", "City Parking <Lot 4>", "Hotel Lindenhof"]


class CardStatements(Statements):
    """What the card holder owes is negative, as the issuer's ledger has it."""
    prefix = "CC"
    message_set = "CREDITCARDMSGSRQV"
    account = "CCACCTFROM"
    account_fields = [("ACCTID", True, ".{1,22}"), ("ACCTKEY", False, ".{1,22}")]
    closing = "CCCLOSING"
    transactions = 5  # two purchases, a payment, a fee and interest
    limit = 500000

    def begin(self, ctx):
        ctx.balance = -(80000 + ctx.seed * 13 % 100000)

    def entry(self, ctx, i, count, day, fitid):
        wobble = (ctx.seed * 7919 + i * 104729) % 15000
        kind = i % 5
        if kind < 2:
            kind, cents, name = ("POS", "DEBIT")[kind], -(wobble + 499), MERCHANTS[(ctx.seed + i) % len(MERCHANTS)]
        elif kind == 2:
            kind, cents, name = "PAYMENT", 25000 + wobble, "Payment - thank you"
        elif kind == 3:
            kind, cents, name = "FEE", -(3900 if i % 2 else 275), ("Late payment fee" if i % 2 else
                                                                      "Foreign transaction fee")
        else:
            kind, cents, name = "INT", -(1000 + wobble // 5), "Interest charge on purchases"
        ctx.total += cents
        t = [("TRNTYPE", kind), ("DTPOSTED", stamp(day))]
        if kind in ("POS", "DEBIT"):  # bought a day or two before it posts
            t.append(("DTUSER", stamp(day - datetime.timedelta(days=1 + i % 2), "000000")))
        t += [("TRNAMT", money(cents)), ("FITID", fitid), ("NAME", name)]
        if kind == "POS":
            t.append(("MEMO", "Card ending %s" % ctx.id[-4:]))
        return t

    def balances(self, ctx):
        ledger = ctx.balance + ctx.total
        return [balance("LEDGERBAL", ledger, ctx.end), balance("AVAILBAL", max(0, self.limit + ledger), ctx.end)]

    def closing_record(self, ctx, month, last, following):
        payments = (ctx.seed * 31 + month.month * 1013) % 40000 + 15000
        purchases = (month.toordinal() * 17) % 60000 + 20000
        interest = max(0, -ctx.balance) * 2199 // 120000  # 21.99% a year
        fees = 9500 if month.month == 1 else (3900 if month.month % 4 == 0 else 0)
        close = ctx.balance + payments - purchases - interest - fees
        record = [("BALOPEN", money(ctx.balance)), ("BALCLOSE", money(close)),
                  ("DTPMTDUE", stamp(last + datetime.timedelta(days=25), "000000")),
                  ("MINPMTDUE", money(max(2500, -close // 50) if close < 0 else 0)), ("FINCHG", money(-interest)),
                  ("PAYANDCREDIT", money(payments)), ("PURANDADV", money(-purchases))]
        if fees:
            record.append(("TOTALFEES", money(-fees)))
        record.append(("CREDITLIMIT", money(self.limit)))
        ctx.balance = close
        return record


class Mortgage:
    """A 30-year loan at 6.25% paid on the first of every month since it was
    taken out; balance(k) is the principal after k payments."""
    TERM = 360
    RATE = 0.0625 / 12

    def __init__(self, seed):
        self.principal = 12000000 + seed * 7919 % 25000000
        self.opened = datetime.date(2016 + seed % 5, 1 + seed % 12, 1)
        self.payment = round(self.principal * self.RATE / (1 - (1 + self.RATE) ** -self.TERM))
        self.escrow = 25000 + seed % 200 * 100

    def balance(self, k):
        k = max(0, min(k, self.TERM))
        growth = (1 + self.RATE) ** k
        return max(0, round(self.principal * growth - self.payment * (growth - 1) / self.RATE))

    def paid_by(self, day):
        """The number of payments due on or before day."""
        return (day.year - self.opened.year) * 12 + day.month - self.opened.month

    def split(self, k):
        """(principal, interest) of payment k."""
        principal = self.balance(k - 1) - self.balance(k)
        return principal, self.payment - principal if principal else 0

    def escrow_amount(self):
        tax = self.escrow * 2 // 3
        return ("ESCRWAMT", [("ESCRWTOTAL", money(self.escrow)), ("ESCRWTAX", money(tax)),
                             ("ESCRWINS", money(self.escrow - tax))])


class LoanStatements(Statements):
    prefix = "LOAN"
    message_set = "LOANMSGSRQV"
    account = "LOANACCTFROM"
    account_fields = [("LOANACCTID", True, ".{1,22}"),
                      ("LOANACCTTYPE", True, "AUTO|CONSUMER|MORTGAGE|COMMERCIAL|STUDENT|MILITARY|SMB|CONSTR|HOMEEQUITY")]
    transaction_list = "LOANTRANLIST"
    transaction = "LOANSTMTTRN"
    closing = "LOANCLOSING"
    line = 5000000  # the credit line of a home equity loan

    def begin(self, ctx):
        ctx.loan = Mortgage(ctx.seed)
        ctx.paid = ctx.loan.paid_by(ctx.start - datetime.timedelta(days=1))

    def entry(self, ctx, i, count, day, fitid):
        loan = ctx.loan
        if i % 6 == 5:
            return [("LOANTRNTYPE", "LATE"), ("DTPOSTED", stamp(day)), ("TRNAMT", money(-4500)), ("FITID", fitid),
                    ("NAME", "Late charge")]
        ctx.paid += 1
        principal, interest = loan.split(ctx.paid)
        return [("LOANTRNTYPE", "PAYMENT"), ("DTPOSTED", stamp(day)), ("DTUSER", stamp(day, "000000")),
                ("TRNAMT", money(loan.payment + loan.escrow)),
                ("LOANTRNAMT", [("PRINAMT", money(principal)), ("INTAMT", money(interest)), loan.escrow_amount()]),
                ("FITID", fitid), ("NAME", "Monthly payment"), ("MEMO", "Payment %d of %d" % (ctx.paid, loan.TERM))]

    def balances(self, ctx):
        loan, owed = ctx.loan, ctx.loan.balance(ctx.paid)
        january = loan.balance(loan.paid_by(datetime.date(ctx.end.year, 1, 1)) - 1)
        available = self.line - owed if ctx.fields["LOANACCTTYPE"] == "HOMEEQUITY" else 0
        return [("PRINBAL", [("BALAMT", money(owed)), ("DTASOF", stamp(ctx.end, "235959")),
                             ("PRINYTD", money(max(0, january - owed))), ("PRINLTD", money(loan.principal - owed))]),
                balance("AVAILBAL", max(0, available), ctx.end),
                ("MKTGINFO", "Refinance from 5.49% APR: ask us.")]

    def closing_record(self, ctx, month, last, following):
        loan = ctx.loan
        k = loan.paid_by(month)  # the payment of the first of this month
        principal, interest = loan.split(k + 1)
        january = loan.paid_by(datetime.date(month.year, 1, 1))
        interest_ytd = (k - january + 1) * loan.payment - (loan.balance(january - 1) - loan.balance(k))
        due = stamp(following, "000000")
        return [("BALOPEN", money(loan.balance(k - 1))), ("BALCLOSE", money(loan.balance(k))), ("DTPMTDUE", due),
                ("LOANPMT", [("PMTAMT", money(loan.payment + loan.escrow)), ("DTPMTDUE", due),
                             ("PRINAMT", money(principal)), ("INTAMT", money(interest)), loan.escrow_amount()]),
                ("LOANINT", [("LOANINTYTD", money(interest_ytd))]), ("LOANIRATE", [("LOANINTRATE", "6.25")])]


# Securities of the broker: (kind, CUSIP, name, ticker, price in cents).
SECURITIES = [("STOCK", "037833100", "Acme Computer Inc.", "ACME", 18950),
              ("MF", "922908363", "Total Market Index Fund", "TMIF", 41225),
              ("DEBT", "912828ZQ6", "US Treasury Note 0.75% 2031", "", 9812),
              ("OPT", "ACME260320C00200000", "ACME Mar 2026 200 Call", "ACME 260320C200", 315),
              ("OTHER", "LP0000042", "Harbour Real Estate LP", "", 10000)]
# The transaction kinds a statement cycles through, each on the security of its kind.
INVESTMENT_KINDS = ["BUYSTOCK", "SELLSTOCK", "BUYMF", "SELLMF", "BUYDEBT", "SELLDEBT", "BUYOPT", "SELLOPT",
                    "INCOME", "REINVEST", "TRANSFER", "SPLIT", "INVBANKTRAN"]


def secid(i):
    kind, cusip = SECURITIES[i][:2]
    return ("SECID", [("UNIQUEID", cusip), ("UNIQUEIDTYPE", "TICKER" if kind == "OPT" else "CUSIP")])


class InvStatements(Statements):
    """A brokerage account: trades of every kind, income, reinvestment,
    transfers, splits and cash movements; positions in each kind of security,
    balances of each BALTYPE and open orders; the securities they name in
    SECLISTMSGSRSV1."""
    prefix = "INV"
    message_set = "INVSTMTMSGSRQV"
    account = "INVACCTFROM"
    account_fields = [("BROKERID", True, ".{1,22}"), ("ACCTID", True, ".{1,22}")]
    transaction_list = "INVTRANLIST"
    closing = "INVCLOSING"
    transactions = len(INVESTMENT_KINDS)

    def check(self, trnrq, message_set):
        if trnrq.name == "INVSTMTENDTRNRQ":
            return Statements.check(self, trnrq, message_set)
        if message_set.name[:-1] != self.message_set:
            raise BadRequest("<%s> belongs in %s1, not in %s" % (trnrq.name, self.message_set, message_set.name))
        incpos = [("DTASOF", False, OFX_DATE), ("INCLUDE", True, YES_NO)]
        rq_form = [(self.account, True, self.account_fields), ("INCTRAN", False, INCTRAN), ("INCOO", True, YES_NO),
                   ("INCPOS", True, incpos), ("INCBAL", True, YES_NO), ("INC401K", False, YES_NO),
                   ("INC401KBAL", False, YES_NO), ("INCTRANIMG", False, YES_NO)]
        check_aggregate(trnrq, [("TRNUID", True, TRNUID_FORM.pattern[1:-1]), ("CLTCOOKIE", False, ".+"),
                                ("TAN", False, ".+"), ("INVSTMTRQ", True, rq_form)])
        return trnrq.child("INVSTMTRQ")

    def answer(self, trnrq, rq, scenario):
        if trnrq.name == "INVSTMTTRNRQ":
            scenario.extra_message_sets = [("SECLISTMSGSRSV1", [("SECLIST", self.security_list())])]
        return Statements.answer(self, trnrq, rq, scenario)

    def begin(self, ctx):
        ctx.cash = 2500000 + ctx.seed % 1000 * 100

    def entry(self, ctx, i, count, day, fitid):
        kind = INVESTMENT_KINDS[i % len(INVESTMENT_KINDS)]
        sec = {"STOCK": 0, "MF": 1, "DEBT": 2, "OPT": 3}.get(kind[3:] if kind[:3] == "BUY" else kind[4:],
                                                           {"REINVEST": 1, "TRANSFER": 4}.get(kind, 0))
        price = SECURITIES[sec][4]
        units = 5 + (ctx.seed + i * 7) % 40
        tran = ("INVTRAN", [("FITID", fitid), ("DTTRADE", stamp(day, "093000")),
                            ("DTSETTLE", stamp(day + datetime.timedelta(days=2), "000000")),
                            ("MEMO", "%s %s" % (kind, SECURITIES[sec][2]))])
        if kind == "INVBANKTRAN":
            cents = 50000 if i % 2 else -12500
            ctx.cash += cents
            return [("STMTTRN", [("TRNTYPE", "CREDIT" if cents > 0 else "DEBIT"), ("DTPOSTED", stamp(day)),
                                 ("TRNAMT", money(cents)), ("FITID", fitid),
                                 ("NAME", "Deposit from checking" if cents > 0 else "Wire out")]),
                    ("SUBACCTFUND", "CASH")]
        if kind[:3] in ("BUY", "SEL"):
            buy = kind[:3] == "BUY"
            scale = 100 if kind.endswith("OPT") else 1
            cents = price * units * scale + 995
            total = -cents if buy else cents - 2 * 995
            ctx.cash += total
            trade = [tran, secid(sec), ("UNITS", str(units)), ("UNITPRICE", money(price)),
                     ("COMMISSION", money(995)), ("TOTAL", money(total)), ("SUBACCTSEC", "CASH"),
                     ("SUBACCTFUND", "CASH")]
            record = [("INVBUY" if buy else "INVSELL", trade)]
            if kind.endswith("OPT"):
                record += [("OPTBUYTYPE" if buy else "OPTSELLTYPE", "BUYTOOPEN" if buy else "SELLTOCLOSE"),
                           ("SHPERCTRCT", "100")]
            elif kind.endswith("DEBT"):
                record += [] if buy else [("SELLREASON", "SELL")]
            else:
                record.append(("BUYTYPE", "BUY") if buy else ("SELLTYPE", "SELL"))
            return record
        if kind == "INCOME":
            cents = 1250 + ctx.seed % 500
            ctx.cash += cents
            return [tran, secid(sec), ("INCOMETYPE", "DIV"), ("TOTAL", money(cents)), ("SUBACCTSEC", "CASH"),
                    ("SUBACCTFUND", "CASH")]
        if kind == "REINVEST":
            return [tran, secid(sec), ("INCOMETYPE", "DIV"), ("TOTAL", money(-price * 2)), ("SUBACCTSEC", "CASH"),
                    ("UNITS", "2"), ("UNITPRICE", money(price))]
        if kind == "TRANSFER":
            return [tran, secid(sec), ("SUBACCTSEC", "CASH"), ("UNITS", str(units)), ("TFERACTION", "IN"),
                    ("POSTYPE", "LONG")]
        return [tran, secid(sec), ("SUBACCTSEC", "CASH"), ("OLDUNITS", "100"), ("NEWUNITS", "400"),
                ("NUMERATOR", "4"), ("DENOMINATOR", "1")]

    def statement_answer(self, rq, scenario):
        """The shared statement walk supplies the transactions; the rest is
        the broker's."""
        body = Statements.statement_answer(self, rq, scenario)
        ctx = scenario.investment
        as_of = day_of(rq.text("INCPOS/DTASOF"), ctx.end)
        # Each record is named by its kind, not the shared STMTTRN.
        lists = [(name, [c if c[0] != self.transaction else (INVESTMENT_KINDS[(i - 2) % len(INVESTMENT_KINDS)], c[1])
                         for i, c in enumerate(children)]) for name, children in body[2:-1]]
        head = [("DTASOF", stamp(ctx.end, "160000")), ("CURDEF", "USD"), body[1]] + lists
        if rq.text("INCPOS/INCLUDE") == "Y":
            head.append(("INVPOSLIST", [self.position(i, as_of) for i in range(len(SECURITIES))]))
        if rq.text("INCBAL") == "Y":
            head.append(body[-1])
        if rq.text("INCOO") == "Y":
            head.append(("INVOOLIST", self.open_orders(ctx)))
        return head + [("MKTGINFO", "Trade with us for $4.95.")]

    def context(self, rq, scenario, start, end):
        scenario.investment = ctx = Statements.context(self, rq, scenario, start, end)
        return ctx

    def position(self, i, as_of):
        kind, _, name, _, price = SECURITIES[i]
        units = 10 * (i + 1) * (100 if kind == "DEBT" else 1)
        value = price * units * (100 if kind == "OPT" else 1)
        return ("POS" + kind, [("INVPOS", [secid(i), ("HELDINACCT", "CASH" if i % 2 == 0 else "MARGIN"),
                                           ("POSTYPE", "SHORT" if kind == "OPT" else "LONG"), ("UNITS", str(units)),
                                           ("UNITPRICE", money(price)), ("MKTVAL", money(value)),
                                           ("DTPRICEASOF", stamp(as_of, "160000")), ("MEMO", name)])])

    def balances(self, ctx):
        return [("INVBAL", [("AVAILCASH", money(ctx.cash + ctx.total)), ("MARGINBALANCE", money(-150000)),
                            ("SHORTBALANCE", money(0)), ("BUYPOWER", money(2 * ctx.cash)),
                            ("BALLIST", [("BAL", [("NAME", "Settled cash"), ("DESC", "Cash available to withdraw"),
                                                  ("BALTYPE", "DOLLAR"), ("VALUE", money(ctx.cash))]),
                                         ("BAL", [("NAME", "Margin rate"), ("DESC", "Current margin rate"),
                                                  ("BALTYPE", "PERCENT"), ("VALUE", "8.25")]),
                                         ("BAL", [("NAME", "Day trades"), ("DESC", "Day trades in 5 days"),
                                                  ("BALTYPE", "NUMBER"), ("VALUE", "2")])])])]

    def open_orders(self, ctx):
        oo = lambda fitid, sec, units: ("OO", [("FITID", fitid), secid(sec),
                                               ("DTPLACED", stamp(ctx.end, "100000")), ("UNITS", units),
                                               ("SUBACCT", "CASH"), ("DURATION", "GOODTILCANCEL"),
                                               ("RESTRICTION", "NONE"), ("LIMITPRICE", "150.00")])
        return [("OOBUYSTOCK", [oo("OO-%s-1" % ctx.id, 0, "25"), ("BUYTYPE", "BUY")]),
                ("OOSELLMF", [oo("OO-%s-2" % ctx.id, 1, "12.5"), ("SELLTYPE", "SELL"), ("UNITTYPE", "SHARES"),
                              ("SELLALL", "N")])]

    def security_list(self):
        infos = []
        for i, (kind, _, name, ticker, price) in enumerate(SECURITIES):
            info = [secid(i), ("SECNAME", name)] + ([("TICKER", ticker)] if ticker else [])
            info += [("FIID", "F%03d" % i), ("UNITPRICE", money(price))]
            extra = {"STOCK": [("YIELD", "0.55"), ("ASSETCLASS", "LARGESTOCK")],
                     "MF": [("MFTYPE", "OPENEND"), ("YIELD", "1.31"),
                            ("MFASSETCLASS", [("PORTION", [("ASSETCLASS", "LARGESTOCK"), ("PERCENT", "80")]),
                                              ("PORTION", [("ASSETCLASS", "SMALLSTOCK"), ("PERCENT", "20")])])],
                     "DEBT": [("PARVALUE", "1000.00"), ("DEBTTYPE", "COUPON"), ("COUPONRT", "0.75"),
                              ("DTMAT", "20310215"), ("YIELDTOMAT", "4.12"), ("ASSETCLASS", "GOVTBOND")],
                     "OPT": [("OPTTYPE", "CALL"), ("STRIKEPRICE", "200.00"), ("DTEXPIRE", "20260320"),
                             ("SHPERCTRCT", "100"), secid(0), ("ASSETCLASS", "LARGESTOCK")],
                     "OTHER": [("TYPEDESC", "Limited partnership"), ("ASSETCLASS", "OTHER")]}[kind]
            infos.append((kind + "INFO", [("SECINFO", info)] + extra))
        return infos

    def closing_record(self, ctx, month, last, following):
        return [("BALOPEN", money(ctx.cash)), ("BALCLOSE", money(ctx.cash))]


# ---------------------------------------------------------------- profile and signup

SERVICE_URL = ["http://127.0.0.1/ofx"]  # main() puts the real one here
PROFILE_DATE = "20260101000000.000[0:GMT]"


class Profile:
    """PROFTRNRQ: the whole profile while the client's DTPROFUP is older than
    PROFILE_DATE, else status 1 (the client is up to date) and no PROFRS."""
    message_set = "PROFMSGSRQV"

    def requests(self):
        return {"PROFTRNRQ": ("PROFRQ", "PROFRS", False)}

    def check(self, trnrq, message_set):
        if message_set.name[:-1] != self.message_set:
            raise BadRequest("<%s> belongs in %s1, not in %s" % (trnrq.name, self.message_set, message_set.name))
        check_aggregate(trnrq, [("TRNUID", True, TRNUID_FORM.pattern[1:-1]),
                                ("PROFRQ", True, [("CLIENTROUTING", True, "NONE|SERVICE|MSGSET"),
                                                  ("DTPROFUP", True, OFX_DATE)])])
        return trnrq.child("PROFRQ")

    def parts(self, trnrq, rq, scenario):
        if re.sub(r"\D", "", rq.text("DTPROFUP")[:14]).ljust(14, "0") >= PROFILE_DATE[:14]:
            return [status(1, "INFO")]
        return [scenario.trn_status or status(), ("PROFRS", self.profile())]

    @staticmethod
    def message_set_info(name, extra=()):
        core = [("VER", "1"), ("URL", SERVICE_URL[0]), ("OFXSEC", "NONE"), ("TRANSPSEC", "Y"),
                ("SIGNONREALM", "Orvelan"), ("LANGUAGE", "ENG"), ("SYNCMODE", "LITE"), ("REFRESHSUPT", "N"),
                ("RESPFILEER", "N"), ("SPNAME", "Orvelan Sandbox")]
        return (name, [(name + "V1", [("MSGSETCORE", core)] + list(extra))])

    def profile(self):
        sets = [self.message_set_info("SIGNONMSGSET"),
                self.message_set_info("SIGNUPMSGSET", [("CLIENTENROLL", [("ACCTREQUIRED", "N")]),
                                                       ("CHGUSERINFO", "N"), ("AVAILACCTS", "Y"),
                                                       ("CLIENTACTREQ", "N")]),
                self.message_set_info("BANKMSGSET", [("INVALIDACCTTYPE", "CD"), ("CLOSINGAVAIL", "Y"),
                                                     ("IMAGEPROF", [("CLOSINGIMGAVAIL", "Y"),
                                                                    ("TRANIMGAVAIL", "Y")])]),
                self.message_set_info("CREDITCARDMSGSET", [("CLOSINGAVAIL", "Y")]),
                self.message_set_info("LOANMSGSET", [("CLOSINGAVAIL", "Y")]),
                self.message_set_info("PROFMSGSET")]
        realm = [("SIGNONREALM", "Orvelan"), ("MIN", "6"), ("MAX", "32"), ("CHARTYPE", "ALPHAORNUMERIC"),
                 ("CASESEN", "Y"), ("SPECIAL", "N"), ("SPACES", "N"), ("PINCH", "Y"), ("CHGPINFIRST", "N"),
                 ("MFACHALLENGESUPT", "Y"), ("MFACHALLENGEFIRST", "N")]
        return [("MSGSETLIST", sets), ("SIGNONINFOLIST", [("SIGNONINFO", realm)]),
                ("DTPROFUP", PROFILE_DATE), ("FINAME", "Orvelan Sandbox Bank"), ("ADDR1", "1 Loopback Way"),
                ("CITY", "Localhost"), ("STATE", "CA"), ("POSTALCODE", "94000"), ("COUNTRY", "USA"),
                ("CSPHONE", "555-0100"), ("TSPHONE", "555-0101"), ("URL", "https://bank.example"),
                ("EMAIL", "help@bank.example")]


class Signup:
    """ACCTINFOTRNRQ lists a bank, a card, an investment and a loan account,
    each time with a fresh DTACCTUP, remembered per USERID: a request that
    sends that DTACCTUP back is up to date and gets no accounts. ENROLLTRNRQ
    answers a temporary password."""
    message_set = "SIGNUPMSGSRQV"

    def __init__(self):
        self.lock = threading.Lock()
        self.issued = {}  # USERID -> the DTACCTUP answered last
        self.sequence = 0

    def requests(self):
        return {"ACCTINFOTRNRQ": ("ACCTINFORQ", "ACCTINFORS", False),
                "ENROLLTRNRQ": ("ENROLLRQ", "ENROLLRS", False)}

    def check(self, trnrq, message_set):
        if message_set.name[:-1] != self.message_set:
            raise BadRequest("<%s> belongs in %s1, not in %s" % (trnrq.name, self.message_set, message_set.name))
        if trnrq.name == "ACCTINFOTRNRQ":
            form = ("ACCTINFORQ", True, [("DTACCTUP", True, OFX_DATE)])
        else:
            form = ("ENROLLRQ", True, [("FIRSTNAME", True, ".+"), ("MIDDLENAME", False, ".+"),
                                       ("LASTNAME", True, ".+"), ("ADDR1", True, ".+"), ("ADDR2", False, ".+"),
                                       ("ADDR3", False, ".+"), ("CITY", True, ".+"), ("STATE", True, ".+"),
                                       ("POSTALCODE", True, ".+"), ("COUNTRY", False, "[A-Z]{3}"),
                                       ("DAYPHONE", False, ".+"), ("EVEPHONE", False, ".+"),
                                       ("EMAIL", True, ".+@.+"), ("USERID", False, ".+")])
        check_aggregate(trnrq, [("TRNUID", True, TRNUID_FORM.pattern[1:-1]), form])
        return trnrq.child(form[0])

    def parts(self, trnrq, rq, scenario):
        if trnrq.name == "ENROLLTRNRQ":
            return [scenario.trn_status or status(),
                    ("ENROLLRS", [("TEMPPASS", "temp-" + rq.text("LASTNAME").lower()),
                                  ("USERID", rq.text("USERID") or rq.text("EMAIL")),
                                  ("DTEXPIRE", stamp(datetime.date.today() + datetime.timedelta(days=30)))])]
        with self.lock:
            sent = rq.text("DTACCTUP")
            if sent and sent == self.issued.get(scenario.name):
                return [scenario.trn_status or status(), ("ACCTINFORS", [("DTACCTUP", sent)])]
            self.sequence += 1
            now = datetime.datetime.now(datetime.timezone.utc)
            issued = now.strftime("%Y%m%d%H%M%S") + ".%03d[0:GMT]" % (self.sequence % 1000)
            self.issued[scenario.name] = issued
        return [scenario.trn_status or status(), ("ACCTINFORS", [("DTACCTUP", issued)] + self.accounts())]

    @staticmethod
    def accounts():
        def transfers(status_text):
            return [("SUPTXDL", "Y"), ("XFERSRC", "Y"), ("XFERDEST", "Y"), ("SVCSTATUS", status_text)]
        bank = ("BANKACCTINFO", [("BANKACCTFROM", [("BANKID", "121000248"), ("ACCTID", "1001"),
                                                   ("ACCTTYPE", "CHECKING")])] + transfers("ACTIVE"))
        card = ("CCACCTINFO", [("CCACCTFROM", [("ACCTID", "4111222233334444")])] + transfers("ACTIVE"))
        invest = ("INVACCTINFO", [("INVACCTFROM", [("BROKERID", "bank.example"), ("ACCTID", "7001")]),
                                  ("USPRODUCTTYPE", "401K"), ("CHECKING", "N"), ("SVCSTATUS", "ACTIVE"),
                                  ("INVACCTTYPE", "INDIVIDUAL")])
        loan = ("LOANACCTINFO", [("LOANACCTFROM", [("LOANACCTID", "L-9001"), ("LOANACCTTYPE", "MORTGAGE")])] +
                transfers("PEND"))
        return [("ACCTINFO", [("DESC", desc), ("PHONE", "555-0100"), info])
                for desc, info in (("Everyday checking", bank), ("Rewards card", card),
                                   ("Retirement", invest), ("Home loan", loan))]


# ---------------------------------------------------------------- moving money

BANK_ACCOUNT = [("BANKID", True, r"[0-9A-Za-z]{1,9}"), ("BRANCHID", False, ".{1,22}"), ("ACCTID", True, ".{1,22}"),
                ("ACCTTYPE", True, "CHECKING|SAVINGS|MONEYMRKT|CREDITLINE|CD"), ("ACCTKEY", False, ".{1,22}")]
CARD_ACCOUNT = [("ACCTID", True, ".{1,22}"), ("ACCTKEY", False, ".{1,22}")]
AMOUNT = r"[-+]?(\d+(\.\d*)?|\.\d+)"
PAYEE_FORM = [("NAME", True, ".{1,32}"), ("ADDR1", True, ".{1,32}"), ("ADDR2", False, ".{1,32}"),
              ("ADDR3", False, ".{1,32}"), ("CITY", True, ".{1,32}"), ("STATE", True, ".{1,5}"),
              ("POSTALCODE", True, ".{1,11}"), ("COUNTRY", False, "[A-Z]{2,3}"), ("PHONE", True, ".{1,32}")]
XFER_FORM = [("XFERINFO", True, [("BANKACCTFROM", False, BANK_ACCOUNT), ("CCACCTFROM", False, CARD_ACCOUNT),
                                 ("BANKACCTTO", False, BANK_ACCOUNT), ("CCACCTTO", False, CARD_ACCOUNT),
                                 ("TRNAMT", True, AMOUNT), ("DTDUE", False, OFX_DATE)])]
SRVRTID_FORM = [("SRVRTID", True, ".{1,10}")]
SYNC_FORM = [("TOKEN", False, ".{1,10}"), ("TOKENONLY", False, YES_NO), ("REFRESH", False, YES_NO),
             ("REJECTIFMISSING", True, YES_NO)]
# The payees the bank pays electronically, by the PAYEEID a client may name.
STANDARD_PAYEES = {
    "ELEC01": [("NAME", "Loopback Electric"), ("ADDR1", "PO Box 127"), ("CITY", "Localhost"), ("STATE", "CA"),
               ("POSTALCODE", "94001"), ("COUNTRY", "USA"), ("PHONE", "555-0110")],
    "WATER02": [("NAME", "City Water"), ("ADDR1", "2 Reservoir Rd"), ("CITY", "Localhost"), ("STATE", "CA"),
                ("POSTALCODE", "94002"), ("COUNTRY", "USA"), ("PHONE", "555-0120")],
}


def tree(node):
    """A request element in the (name, content) form render() writes."""
    return (node.name, node.value) if node.value is not None else (node.name, [tree(c) for c in node.children])


def one_of(node, names):
    present = [c for c in node.children if c.name in names]
    if len(present) != 1:
        raise BadRequest("<%s> takes exactly one of %s" % (node.name, ",".join(names)))
    return present[0]


def account_key(node):
    return tuple((c.name, c.value) for c in node.children if c.name in ("BANKID", "ACCTID", "ACCTTYPE"))


class Refused(Exception):
    """A request the bank understood and declines with an OFX status."""


class Book:
    """What one user has at the bank: records in the order they were made,
    and every change as the transaction response that reported it."""

    def __init__(self):
        self.records = {}  # server id -> record
        self.changes = []  # (sequence, sync key, transaction response)
        self.sequence = 0  # the newest token
        self.issued = 0

    def new_id(self, prefix, width):
        self.issued += 1
        return "%s%0*d" % (prefix, width, self.issued)

    def find(self, server_id, kind, gone_code):
        record = self.records.get(server_id)
        if record is None or record.kind != kind:
            raise Refused(10519 if kind == "PAYEE" else 2018)
        if record.gone:
            raise Refused(gone_code)
        return record


class MoneyMovement:
    """A family that changes what a user has: transfers or bill payments. Each
    transaction request changes one record, kept per USERID for the run with
    the response that reported it; a synchronization answers the responses
    after its TOKEN (every record as it stands with REFRESH Y) and the newest
    token. A token the bank never issued, and any token for USERID lostsync,
    gets LOSTSYNC Y and no records."""
    transactions = {}  # TRNRQ name -> (message set, {RQ name: (action, RS name, form)})
    syncs = {}         # SYNCRQ name -> (message set, account forms, record kind)

    def __init__(self):
        self.lock = threading.Lock()
        self.books = {}

    def requests(self):
        return {name: (None, None, False) for name in self.transactions}

    @property
    def sync_requests(self):
        return self.syncs

    def check(self, trnrq, message_set):
        set_name, actions = self.transactions[trnrq.name]
        if message_set.name[:-1] != set_name:
            raise BadRequest("<%s> belongs in %s1, not in %s" % (trnrq.name, set_name, message_set.name))
        check_aggregate(trnrq, [("TRNUID", True, TRNUID_FORM.pattern[1:-1]), ("CLTCOOKIE", False, ".+"),
                                ("TAN", False, ".+")] + [(name, False, form) for name, (_, _, form) in actions.items()])
        return one_of(trnrq, list(actions))

    def parts(self, trnrq, rq, scenario):
        action, rs_name, _ = self.transactions[trnrq.name][1][rq.name]
        with self.lock:
            book = self.books.setdefault(scenario.userid, Book())
            try:
                record, body = getattr(self, action)(book, rq)
            except Refused as refusal:
                return [status(refusal.args[0], "ERROR")]
            answer = [scenario.trn_status or status(), (rs_name, body)]
            if action != "inquire":
                record.trnuid = trnrq.text("TRNUID")
                book.sequence += 1
                book.changes.append((book.sequence, record.sync_key,
                                     (trnrq.name[:-2] + "RS", [("TRNUID", record.trnuid)] + answer)))
        return answer

    def synchronize(self, syncrq, message_set, scenario):
        set_name, accounts, kind = self.syncs[syncrq.name]
        if message_set.name[:-1] != set_name:
            raise BadRequest("<%s> belongs in %s1, not in %s" % (syncrq.name, set_name, message_set.name))
        check_aggregate(syncrq, SYNC_FORM + [(name, False, form) for name, form in accounts])
        one_of(syncrq, ("TOKEN", "TOKENONLY", "REFRESH"))
        account = one_of(syncrq, [name for name, _ in accounts]) if accounts else None
        key = (kind, account_key(account)) if account is not None else (kind,)
        with self.lock:
            book = self.books.setdefault(scenario.userid, Book())
            token = syncrq.text("TOKEN")
            lost = syncrq.child("TOKEN") is not None and (
                scenario.name == "lostsync" or not token.isdigit() or int(token) > book.sequence)
            if lost or syncrq.text("TOKENONLY") == "Y":
                records = []
            elif syncrq.text("REFRESH") == "Y":
                records = [self.current(r) for r in book.records.values() if r.sync_key == key]
            else:
                records = [trnrs for sequence, k, trnrs in book.changes if sequence > int(token) and k == key]
            head = [("TOKEN", str(book.sequence)), ("LOSTSYNC", "Y" if lost else "N")]
        return (syncrq.name[:-2] + "RS", head + ([tree(account)] if account is not None else []) + records)

    def current(self, record):
        raise NotImplementedError

    @staticmethod
    def amount(info):
        try:
            if float(info.text("TRNAMT")) <= 0:
                raise Refused(2012)
        except ValueError:
            raise Refused(2012)

    @staticmethod
    def due_day(info):
        """The day a due date names; before today is too soon."""
        if info.child("DTDUE") is None:
            return None
        day = day_of(info.text("DTDUE"), None)
        if day is None:
            raise Refused(2020)
        if day < datetime.date.today():
            raise Refused(2014)
        return day


class Transfers(MoneyMovement):
    """INTRATRNRQ (BANKMSGSRQV1) and INTERTRNRQ (INTERXFERMSGSRQV1): add,
    modify and cancel by SRVRTID; INTRASYNCRQ and INTERSYNCRQ per account.
    A transfer due today or without DTDUE posts at once within the bank and
    in two days to another bank; one due later waits (WILLPROCESSON) and can be
    modified or cancelled until then. Refusals: 2012 for an amount not above
    zero, 2014 for a past due date, 2016 for a posted transfer, 2017 for a
    cancelled one, 2018 for an unknown SRVRTID, 10506 for a new origin."""
    transactions = {p + "TRNRQ": (s, {p + "RQ": ("add", p + "RS", XFER_FORM),
                                      p + "MODRQ": ("modify", p + "MODRS", SRVRTID_FORM + XFER_FORM),
                                      p + "CANRQ": ("cancel", p + "CANRS", SRVRTID_FORM)})
                    for p, s in (("INTRA", "BANKMSGSRQV"), ("INTER", "INTERXFERMSGSRQV"))}
    syncs = {p + "SYNCRQ": (s, [("BANKACCTFROM", BANK_ACCOUNT), ("CCACCTFROM", CARD_ACCOUNT)], p)
             for p, s in (("INTRA", "BANKMSGSRQV"), ("INTER", "INTERXFERMSGSRQV"))}

    def schedule(self, record, info):
        one_of(info, ("BANKACCTFROM", "CCACCTFROM"))
        one_of(info, ("BANKACCTTO", "CCACCTTO"))
        self.amount(info)
        due = self.due_day(info)
        today = datetime.date.today()
        if record.kind == "INTER" and (due is None or due == today):
            due = today + datetime.timedelta(days=2)
        record.info = tree(info)
        if due is None or due == today:
            record.code, record.date = "POSTEDON", now_stamp()
        else:
            record.code, record.date = "WILLPROCESSON", stamp(due, "000000")

    def add(self, book, rq):
        kind = rq.name[:5]
        info = rq.child("XFERINFO")
        origin = one_of(info, ("BANKACCTFROM", "CCACCTFROM"))
        record = types.SimpleNamespace(id=book.new_id("XF", 6), kind=kind, gone=False,
                                       sync_key=(kind, account_key(origin)))
        self.schedule(record, info)
        book.records[record.id] = record
        return record, self.body(record)

    def modify(self, book, rq):
        record = self.changeable(book, rq)
        info = rq.child("XFERINFO")
        if (record.kind, account_key(one_of(info, ("BANKACCTFROM", "CCACCTFROM")))) != record.sync_key:
            raise Refused(10506)
        self.schedule(record, info)
        body = self.body(record)
        return record, [("SRVRTID", record.id), record.info, body[-1]]

    def cancel(self, book, rq):
        record = self.changeable(book, rq)
        record.gone, record.code, record.date = True, "CANCELEDON", now_stamp()
        return record, [("SRVRTID", record.id)]

    def changeable(self, book, rq):
        record = book.find(rq.text("SRVRTID"), rq.name[:5], 2017)
        if record.code == "POSTEDON":
            raise Refused(2016)
        return record

    def body(self, record):
        when = ("DTPOSTED", record.date) if record.code == "POSTEDON" else ("DTXFERPRJ", record.date)
        fee = [("XFERFEE", "5.00")] if record.kind == "INTER" else []
        return [("CURDEF", "USD"), ("SRVRTID", record.id), record.info, when] + fee + [
            ("XFERPRCSTS", [("XFERPRCCODE", record.code), ("DTXFERPRC", record.date)])]

    def current(self, record):
        if record.gone:
            answer = (record.kind + "CANRS", [("SRVRTID", record.id)])
        else:
            answer = (record.kind + "RS", self.body(record))
        return (record.kind + "TRNRS", [("TRNUID", record.trnuid), status(), answer])


PMTINFO_FORM = [("BANKACCTFROM", True, BANK_ACCOUNT), ("TRNAMT", True, AMOUNT), ("PAYEEID", False, ".{1,12}"),
                ("PAYEE", False, PAYEE_FORM), ("PAYEELSTID", False, ".{1,12}"), ("BANKACCTTO", False, BANK_ACCOUNT),
                ("PAYACCT", True, ".{1,32}"), ("DTDUE", True, OFX_DATE), ("MEMO", False, ".{1,255}"),
                ("BILLREFINFO", False, ".{1,80}")]
PAYEE_RQ_FORM = [("PAYEEID", False, ".{1,12}"), ("PAYEE", False, PAYEE_FORM), ("BANKACCTTO", False, BANK_ACCOUNT),
                 ("PAYACCT", False, ".{1,32}")]
LISTID_FORM = [("PAYEELSTID", True, ".{1,12}")]
PAYEE_MOD_FORM = LISTID_FORM + [("PAYEE", True, PAYEE_FORM)] + PAYEE_RQ_FORM[2:]


class BillPay(MoneyMovement):
    """BILLPAYMSGSRQV1: payments (PMTTRNRQ add, modify, cancel; PMTINQTRNRQ;
    PMTSYNCRQ per paying account) and the payee list (PAYEETRNRQ add, modify,
    delete; PAYEESYNCRQ). A payment due today is PROCESSEDON at once, one due
    later WILLPROCESSON; one to a payee of the bank's own list (PAYEEID ELEC01
    or WATER02) goes out electronically, any other as a check with a CHECKNUM.
    Refusals besides the transfers' ones: 10510 for an unknown PAYEEID, 10514
    for a processed payment, 10515 for modifying a payee of the bank's list,
    10519 for an unknown or deleted PAYEELSTID."""
    transactions = {
        "PMTTRNRQ": ("BILLPAYMSGSRQV", {"PMTRQ": ("pay", "PMTRS", [("PMTINFO", True, PMTINFO_FORM)]),
                                        "PMTMODRQ": ("modify", "PMTMODRS",
                                                     SRVRTID_FORM + [("PMTINFO", True, PMTINFO_FORM)]),
                                        "PMTCANCRQ": ("cancel", "PMTCANCRS", SRVRTID_FORM)}),
        "PMTINQTRNRQ": ("BILLPAYMSGSRQV", {"PMTINQRQ": ("inquire", "PMTINQRS", SRVRTID_FORM)}),
        "PAYEETRNRQ": ("BILLPAYMSGSRQV", {"PAYEERQ": ("add_payee", "PAYEERS", PAYEE_RQ_FORM),
                                          "PAYEEMODRQ": ("modify_payee", "PAYEEMODRS", PAYEE_MOD_FORM),
                                          "PAYEEDELRQ": ("delete_payee", "PAYEEDELRS", LISTID_FORM)}),
    }
    syncs = {"PMTSYNCRQ": ("BILLPAYMSGSRQV", [("BANKACCTFROM", BANK_ACCOUNT)], "PMT"),
             "PAYEESYNCRQ": ("BILLPAYMSGSRQV", [], "PAYEE")}

    # ---- payments

    def schedule(self, book, record, info):
        payee = one_of(info, ("PAYEEID", "PAYEE"))
        if payee.name == "PAYEEID" and payee.value not in STANDARD_PAYEES:
            raise Refused(10510)
        list_id = info.text("PAYEELSTID")
        if list_id:
            book.find(list_id, "PAYEE", 10519)
        self.amount(info)
        due = self.due_day(info)
        record.info, record.list_id, record.standard = tree(info), list_id, (
            payee.value if payee.name == "PAYEEID" else None)
        if due == datetime.date.today():
            record.code, record.date = "PROCESSEDON", now_stamp()
        else:
            record.code, record.date = "WILLPROCESSON", stamp(due, "000000")

    def pay(self, book, rq):
        info = rq.child("PMTINFO")
        record = types.SimpleNamespace(id=book.new_id("BP", 6), kind="PMT", gone=False, check=None,
                                       sync_key=("PMT", account_key(info.child("BANKACCTFROM"))))
        self.schedule(book, record, info)
        if record.standard is None:
            record.check = str(5000 + book.issued)
        book.records[record.id] = record
        return record, self.payment(record)

    def modify(self, book, rq):
        record = self.pending(book, rq)
        info = rq.child("PMTINFO")
        if ("PMT", account_key(info.child("BANKACCTFROM"))) != record.sync_key:
            raise Refused(10506)
        self.schedule(book, record, info)
        return record, [("SRVRTID", record.id), record.info, self.processing(record)]

    def cancel(self, book, rq):
        record = self.pending(book, rq)
        record.gone, record.code, record.date = True, "CANCELEDON", now_stamp()
        return record, [("SRVRTID", record.id)]

    def inquire(self, book, rq):
        record = book.records.get(rq.text("SRVRTID"))
        if record is None or record.kind != "PMT":
            raise Refused(2018)
        check = [("CHECKNUM", record.check)] if record.check else []
        return record, [("SRVRTID", record.id), self.processing(record)] + check

    def pending(self, book, rq):
        record = book.find(rq.text("SRVRTID"), "PMT", 2017)
        if record.code == "PROCESSEDON":
            raise Refused(10514)
        return record

    @staticmethod
    def processing(record):
        return ("PMTPRCSTS", [("PMTPRCCODE", record.code), ("DTPMTPRC", record.date)])

    def payment(self, record):
        body = [("SRVRTID", record.id)] + ([("PAYEELSTID", record.list_id)] if record.list_id else [])
        body += [("CURDEF", "USD"), record.info]
        if record.standard:
            body.append(self.extended(record.standard))
        if record.check:
            body.append(("CHECKNUM", record.check))
        return body + [self.processing(record)]

    @staticmethod
    def extended(payee_id):
        if payee_id is None:
            return ("EXTDPAYEE", [("DAYSTOPAY", "5")])  # mailed as a check
        return ("EXTDPAYEE", [("PAYEEID", payee_id), ("IDSCOPE", "GLOBAL"),
                              ("NAME", dict(STANDARD_PAYEES[payee_id])["NAME"]), ("DAYSTOPAY", "2")])

    # ---- payees

    def describe(self, record, rq):
        record.payee = ("PAYEE", STANDARD_PAYEES[record.standard]) if record.standard else tree(rq.child("PAYEE"))
        record.extra = [tree(c) for c in rq.children if c.name in ("BANKACCTTO", "PAYACCT")]

    def add_payee(self, book, rq):
        chosen = one_of(rq, ("PAYEEID", "PAYEE"))
        if chosen.name == "PAYEEID" and chosen.value not in STANDARD_PAYEES:
            raise Refused(10510)
        record = types.SimpleNamespace(id=book.new_id("PL", 5), kind="PAYEE", gone=False, sync_key=("PAYEE",),
                                       standard=chosen.value if chosen.name == "PAYEEID" else None)
        self.describe(record, rq)
        book.records[record.id] = record
        return record, self.payee(record)

    def modify_payee(self, book, rq):
        record = book.find(rq.text("PAYEELSTID"), "PAYEE", 10519)
        if record.standard:
            raise Refused(10515)
        self.describe(record, rq)
        return record, self.payee(record)

    def delete_payee(self, book, rq):
        record = book.find(rq.text("PAYEELSTID"), "PAYEE", 10519)
        record.gone = True
        return record, [("PAYEELSTID", record.id)]

    def payee(self, record):
        bank = [e for e in record.extra if e[0] == "BANKACCTTO"]
        return [("PAYEELSTID", record.id), record.payee] + bank + [self.extended(record.standard)] + [
            e for e in record.extra if e[0] == "PAYACCT"]

    def current(self, record):
        if record.kind == "PAYEE":
            answer = ("PAYEEDELRS", [("PAYEELSTID", record.id)]) if record.gone else ("PAYEERS", self.payee(record))
            return ("PAYEETRNRS", [("TRNUID", record.trnuid), status(), answer])
        answer = ("PMTCANCRS", [("SRVRTID", record.id)]) if record.gone else ("PMTRS", self.payment(record))
        return ("PMTTRNRS", [("TRNUID", record.trnuid), status(), answer])


FAMILIES = [BankStatements(), CardStatements(), LoanStatements(), InvStatements(), Profile(), Signup(), Transfers(),
            BillPay()]
REQUESTS = {name: family for family in FAMILIES for name in family.requests()}
SYNC_REQUESTS = {name: family for family in FAMILIES for name in getattr(family, "sync_requests", ())}


class Bank:
    """Computes the answer to one checked request."""

    def __init__(self, ofx, sonrq, dialect, version, scenario, password):
        self.ofx = ofx
        self.password = password
        self.sonrq = sonrq
        self.dialect = dialect
        self.version = version
        self.scenario = scenario

    def signon(self, code=0, severity="INFO", extra=()):
        parts = [status(code, severity), ("DTSERVER", now_stamp()), ("LANGUAGE", "ENG")]
        parts.append(("FI", [(c.name, c.value) for c in self.sonrq.child("FI").children]))
        # Answered questions earn the key that stands in for them from then on.
        if self.scenario.name in ("accesskey", "mfa") and code == 0 and not extra:
            parts.append(("ACCESSKEY", ACCESS_KEY))
        return [("SIGNONMSGSRSV1", [("SONRS", parts)] + list(extra))]

    def answer(self):
        """Returns (http status, content type, body bytes)."""
        s = self.scenario
        image = self.ofx.find("IMAGEMSGSRQV1/IMAGETRNRQ/IMAGERQ/IMAGEREF")
        if self.sonrq.text("USERPASS") != self.password:
            if image is not None:
                return 200, "application/x-ofx", b"OFX-STATUS=15500"
            return self.ofx_answer(self.signon(15500, "ERROR"))
        if s.name == "http":
            try:
                reason = http.HTTPStatus(s.http_status).phrase
            except ValueError:
                reason = "Error"
            page = "<html><head><title>%d %s</title></head><body><h1>%s</h1></body></html>\r\n" % (
                s.http_status, reason, reason)
            return s.http_status, "text/html", page.encode()
        if s.name == "badofx":
            return 200, "application/x-ofx", b"<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n</SIGNONMSGSRSV1>\r\n</OFX>"
        if image is not None:
            if image.value == "missing":
                return 200, "application/x-ofx", b"OFX-STATUS=16512"
            return 200, "image/png", png(image.value or "")
        challenge = self.ofx.children[0].child("MFACHALLENGETRNRQ")
        answers = [c for c in self.sonrq.children if c.name == "MFACHALLENGEA"]
        # Answers win over a challenge request sent with them.
        if challenge is not None and not (s.name == "mfa" and answers):
            return self.ofx_answer(self.signon(extra=[self.challenge(challenge)]))
        if s.name == "mfa" and self.sonrq.text("ACCESSKEY") != ACCESS_KEY:
            if not answers:
                return self.ofx_answer(self.signon(3000, "ERROR"))
            given = {a.text("MFAPHRASEID"): a.text("MFAPHRASEA").lower() for a in answers}
            if any(given.get(pid) != answer for pid, _, answer in MFA_QUESTIONS):
                return self.ofx_answer(self.signon(3001, "ERROR"))
        body = self.signon()
        for message_set in self.ofx.children[1:]:
            body.append((message_set.name.replace("RQV", "RSV"), self.message_set(message_set)))
        body += getattr(s, "extra_message_sets", [])
        return self.ofx_answer(body)

    def ofx_answer(self, body):
        return 200, "application/x-ofx", document(self.dialect, self.version, body)

    def challenge(self, request):
        questions = [("MFACHALLENGE", [("MFAPHRASEID", pid), ("MFAPHRASELABEL", label)])
                     for pid, label, _ in MFA_QUESTIONS]
        return ("MFACHALLENGETRNRS", [("TRNUID", request.text("TRNUID")), status(),
                                      ("MFACHALLENGERS", questions)])

    def message_set(self, message_set):
        out = []
        for request in message_set.children:
            if request.name in SYNC_REQUESTS:
                out.append(SYNC_REQUESTS[request.name].synchronize(request, message_set, self.scenario))
                continue
            if not request.name.endswith("TRNRQ"):
                continue
            family = REQUESTS.get(request.name)
            rq = family.check(request, message_set) if family is not None else None
            parts = [("TRNUID", request.text("TRNUID"))]
            # An account id error<CODE> fails its own transaction only, so a batch can mix outcomes.
            refused = next((n.value for n in request.walk() if n.name == "ACCTID" and n.value
                            and re.fullmatch(r"error\d+", n.value)), None)
            if self.scenario.name == "error":
                parts.append(self.scenario.trn_status)
            elif refused:
                parts.append(status(int(refused[5:]), "ERROR", "Account %s is refused." % refused))
            elif hasattr(family, "parts"):
                parts += family.parts(request, rq, self.scenario)
            elif family is not None:
                parts += [self.scenario.trn_status or status(), family.answer(request, rq, self.scenario)]
            else:
                parts.append(status())
            out.append((request.name[:-2] + "RS", parts))
        return out


def png(comment):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xffffffff)
    header = struct.pack(">IIBBBBB", 1, 1, 8, 0, 0, 0, 0)  # 1x1, 8-bit grey
    pixels = zlib.compress(b"\x00\x7f")
    text = b"Comment\x00" + comment.encode("latin-1", "replace")
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"tEXt", text) + chunk(b"IDAT", pixels) +
            chunk(b"IEND", b""))


# ---------------------------------------------------------------- serving


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "OrvelanTestBank/1.0"

    def log_message(self, format, *args):
        pass

    def reply(self, code, content_type, body):
        self.send_response(code)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", "0")))
        try:
            code, kind, answer = self.decide(self.headers.get("Content-Type", ""), body)
        except BadRequest as e:
            code, kind, answer = 400, "text/plain", ("Bad OFX request: %s.\n" % e).encode("latin-1", "replace")
        if code == 0:
            note = "stalling"
        elif code == 400:
            note = answer.decode("latin-1").strip()
        else:
            note = "%s, %d bytes" % (kind, len(answer))
        self.server.record(code, body, note)
        if code == 0:
            return self.stall()
        self.reply(code, kind, answer)

    def decide(self, content_type, body):
        media = content_type.split(";")[0].strip().lower()
        if media != "application/x-ofx":
            raise BadRequest("Content-Type must be application/x-ofx, got %r" % content_type)
        if not body:
            raise BadRequest("the body is empty")
        text = body.decode("latin-1")
        dialect, version, rest = read_header(text)
        ofx = read_tree(rest, dialect)
        sonrq = check_signon(ofx)
        scenario = Scenario(sonrq.text("USERID"))
        if scenario.name == "stall" and sonrq.text("USERPASS") == self.server.password:
            return 0, None, None
        return Bank(ofx, sonrq, dialect, version, scenario, self.server.password).answer()

    def stall(self):
        # Hold the connection without a byte of answer until the client gives up.
        self.close_connection = True
        while not self.server.stopping:
            readable, _, _ = select.select([self.connection], [], [], 0.2)
            if readable:
                try:
                    if not self.connection.recv(4096):
                        return
                except OSError:
                    return


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    allow_reuse_address = True

    def __init__(self, address, password, log_path):
        super().__init__(address, Handler)
        self.password = password
        self.log_path = log_path
        self.lock = threading.Lock()
        self.sequence = 0
        self.stopping = False

    def record(self, code, body, note):
        with self.lock:
            self.sequence += 1
            print("request %d: %d %s" % (self.sequence, code, note), flush=True)
            if self.log_path:
                with open(self.log_path, "ab") as log:
                    log.write(b"--- request %d status=%d length=%d\n" % (self.sequence, code, len(body)) + body + b"\n")

    def handle_error(self, request, client_address):
        # A client that drops the connection or refuses the certificate is
        # ordinary here; one line instead of a traceback.
        print("connection from %s:%d: %s" % (client_address[0], client_address[1], sys.exc_info()[1]),
              file=sys.stderr, flush=True)


def make_certificate(host, directory):
    """A self-signed certificate for host, 127.0.0.1 and localhost, valid 30 days."""
    names = {"IP:127.0.0.1", "DNS:localhost"}
    if host not in ("", "0.0.0.0", "::"):
        names.add(("IP:" if re.fullmatch(r"[\d.]+|[0-9a-fA-F:]+", host) else "DNS:") + host)
    cert, key = os.path.join(directory, "bank.pem"), os.path.join(directory, "bank.key")
    try:
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "30",
                        "-subj", "/CN=Orvelan Test Bank", "-addext", "subjectAltName=" + ",".join(sorted(names)),
                        "-keyout", key, "-out", cert], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.PIPE)
    except FileNotFoundError:
        sys.exit("orvelan-testbank: --tls needs the openssl command to make a certificate (or --cert and --key)")
    except subprocess.CalledProcessError as e:
        sys.exit("orvelan-testbank: openssl could not make a certificate: " + e.stderr.decode(errors="replace"))
    return cert, key


def main():
    parser = argparse.ArgumentParser(
        prog="orvelan-testbank", description="A sandbox OFX bank to try an OFX client against.",
        epilog="\n".join(__doc__.split("\n")[2:]), formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--host", default="127.0.0.1", help="address to listen on (default 127.0.0.1)")
    parser.add_argument("--port", type=int, default=0, help="port to listen on (default: any free port)")
    parser.add_argument("--password", default="secret", help='the one password it accepts (default "secret")')
    parser.add_argument("--tls", action="store_true",
                        help="serve HTTPS (TLS 1.2 or later) with a self-signed certificate made by openssl")
    parser.add_argument("--cert", metavar="PEM", help="serve HTTPS with this certificate (chain) instead")
    parser.add_argument("--key", metavar="PEM", help="the private key of --cert, if not in the same file")
    parser.add_argument("--cert-out", metavar="PEM", help="copy the made certificate here, for the client to trust")
    parser.add_argument("--log", metavar="FILE", default="", help="append every request body to FILE (format below)")
    parser.add_argument("--port-file", metavar="FILE", default="",
                        help="write the port to FILE once listening (written whole, then renamed)")
    args = parser.parse_args()
    if args.key and not args.cert:
        parser.error("--key needs --cert")
    if args.cert_out and (args.cert or not args.tls):
        parser.error("--cert-out goes with --tls, and without --cert")

    server = Server((args.host, args.port), args.password, args.log)
    scratch = None
    cert, key = args.cert, args.key
    if args.tls and not cert:
        scratch = tempfile.mkdtemp(prefix="orvelan-testbank-")
        cert, key = make_certificate(args.host, scratch)
        if args.cert_out:
            shutil.copyfile(cert, args.cert_out)
    if cert:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.minimum_version = ssl.TLSVersion.TLSv1_2
        context.load_cert_chain(cert, key)
        # The handshake then runs in the connection's own thread, so a client
        # that never speaks holds up nobody else.
        server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    port = server.server_address[1]
    if args.port_file:
        with open(args.port_file + ".tmp", "w") as f:
            f.write("%d\n" % port)
        os.replace(args.port_file + ".tmp", args.port_file)
    host = "[%s]" % args.host if ":" in args.host else args.host
    SERVICE_URL[0] = "%s://%s:%d/ofx" % ("https" if cert else "http", host, port)
    print("orvelan-testbank: serving %s" % SERVICE_URL[0], flush=True)
    if scratch:
        print("certificate: %s" % (args.cert_out or cert), flush=True)

    def stop(signum, frame):
        server.stopping = True
        threading.Thread(target=server.shutdown, daemon=True).start()
    signal.signal(signal.SIGTERM, stop)
    signal.signal(signal.SIGINT, stop)
    try:
        server.serve_forever(poll_interval=0.2)
    finally:
        server.server_close()
        if scratch:
            shutil.rmtree(scratch, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
