// Differential check against digests of an earlier build (real files, generated statements, token soup,
// mutants) of the parse and Finish codes and texts, every arena byte, the kept text and what paths reach,
// however the bytes arrive. After a deliberate change, rerun with ORVELAN_DIGEST_OUT=file and review.
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <map>

#include <gtest/gtest.h>

#include "ofx/ofx_tag_table.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

struct Rng {  // splitmix64: the same sequence on every platform
  uint64_t state;
  size_t Below(size_t n) {
    const uint64_t z = (state += 0x9E3779B97F4A7C15ull), y = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    const uint64_t x = (y ^ (y >> 27)) * 0x94D049BB133111EBull;
    return static_cast<size_t>((x ^ (x >> 31)) % n);
  }
};

uint64_t Fnv(const std::string& s, uint64_t h = 14695981039346656037ull) {
  for (unsigned char c : s) h = (h ^ c) * 1099511628211ull;
  return h;
}

std::string Source() { return std::getenv("ORVELAN_SOURCE_DIR") ? std::getenv("ORVELAN_SOURCE_DIR") : "."; }

struct Document { std::string name, text; std::vector<std::string> paths; };

// An OFX statement with a little of everything a bank sends. In a shape, "{NAME value}" is a leaf
// (closed in XML only) and "~" a line end.
std::string Statement(Rng& rng, int transactions, bool xml) {
  const std::string nl = rng.Below(3) == 0 ? "\n" : "\r\n";
  std::string s = xml ? "<?xml version=\"1.0\"?>\r\n<?OFX OFXHEADER=\"200\" VERSION=\"211\"?>\r\n"
                      : "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n";
  const auto add = [&](const std::string& shape) {
    for (size_t at = 0; at < shape.size(); ++at) {
      const size_t space = shape.find(' ', at), close = shape.find('}', at);
      const std::string name = shape.substr(at + 1, space - at - 1), end = xml ? "</" + name + ">" : "";
      s += shape[at] == '~' ? nl : shape[at] != '{' ? shape.substr(at, 1) : "<" + name + ">";
      if (shape[at] == '{') s += shape.substr(space + 1, close - space - 1) + end + nl, at = close;
    }
  };
  add("<OFX>~<SIGNONMSGSRSV1><SONRS><STATUS>{CODE 0}{SEVERITY INFO}</STATUS>{DTSERVER 20240131120000.000[-5:EST]}"
      "</SONRS></SIGNONMSGSRSV1>~<BANKMSGSRSV1><STMTTRNRS>{TRNUID 1001}<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY>"
      "</STATUS><STMTRS>{CURDEF USD}<BANKACCTFROM>{BANKID 121000248}{ACCTID 0123456789}{ACCTTYPE CHECKING}"
      "</BANKACCTFROM><BANKTRANLIST>{DTSTART 20240101}");
  static const char* const kNames[] = {"GROCERY &amp; CO", "  PADDED  NAME  ", "CAF\xC3\xA9 #12", "A&#66;C &#x41;",
                                       "x &lt; y &bogus", "TAB\tIN", "<![CDATA[ <raw> ]]>", ""};
  for (int i = 0; i < transactions; ++i) {
    char t[160];
    std::snprintf(t, sizeof t, "<STMTTRN>~{TRNTYPE %s}{DTPOSTED 202401%d%s}{TRNAMT %s%d.%d}{FITID %d}",
                  i % 4 ? "DEBIT" : "CREDIT", 10 + i % 20, i % 3 ? "" : "120000.000[-5:EST]", i % 4 ? "-" : "",
                  i % 990, 10 + i % 90, 1000000 + i);
    add(t + (rng.Below(4) ? "" : "{CHECKNUM " + std::to_string(1000 + i) + "}"));
    add(std::string("{NAME ") + kNames[rng.Below(8)] + "}");
    add(rng.Below(3) ? "</STMTTRN>~" : "{MEMO memo " + std::to_string(i) + " <!-- c -->end}</STMTTRN>~");
  }
  add("</BANKTRANLIST><LEDGERBAL>{BALAMT 1234.56}</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>~");
  return s;
}

// Markup fragments thrown together: mostly well formed, often not.
std::string Soup(Rng& rng) {
  static const char* const kPieces[] = {
      "<A>", "</A>", "<B>", "</B>", "<x:C>", "</x:C>", "<STMTTRN>", "</STMTTRN>", "<NAME>", "<OFX>", "</OFX>",
      "<A/>", "<B a='1' b=\"2\" c=3 d/>", "<D xmlns='u'>", "</D>", "<y:E xmlns:y='v' y:k='1'>", "</y:E>",
      "text", " spaced  out ", "\r\n", "\n", "\t", "&amp;", "&lt;", "&#65;", "&#x4a;", "&#300;", "&q", "&",
      "<!-- c -->", "<!-- a -- b -->", "<![CDATA[ x ]]>", "<![IGNORE[y]]>", "<?pi z?>", "<!DOCTYPE d [<!E 'x'>]>",
      "< ", "</ ", "<", ">", "/", "=", "'", "\"", "]]>", "--", "<A x>", "</A y>", "<A b=>", "<A b='&amp;'>",
      "<A b=&lt;>", "<LEAF>v", "<B.1-2_3>w", "\xC3\xA9", "<1>", "<A/ >", "<![ CDATA [z]]>"};
  std::string s;
  for (size_t n = 5 + rng.Below(60); n > 0; --n) s += kPieces[rng.Below(sizeof kPieces / sizeof kPieces[0])];
  return s;
}

std::string Mutate(Rng& rng, std::string s) {
  static const std::string kSpecial = "<>&/!?-[]'\"=:; \r\n#xA";
  for (size_t n = 1 + rng.Below(4); n > 0 && !s.empty(); --n) {
    const size_t at = rng.Below(s.size()), op = rng.Below(4);
    if (op < 2) s.insert(at, 1, kSpecial[rng.Below(kSpecial.size())]);
    if (op == 0) s.erase(at + 1, 1);  // a replacement
    if (op == 2) s.erase(at, 1 + rng.Below(8));
    if (op == 3) s.resize(at);
  }
  return s;
}

std::vector<Document> Documents() {
  std::vector<Document> docs;
  for (const char* seed : {"broken", "html_comments", "sgml_leaves", "sgml_statement", "xml_namespaces"}) {
    const std::string raw = Slurp(Source() + "/fuzz/seeds/markup_fuzz/" + seed), rest = raw.substr(raw.empty() ? 0 : 1);
    const size_t nul = rest.find('\0');
    Document d{std::string("seed/") + seed, rest.substr(0, nul), {}};
    for (size_t at = nul; at < rest.size(); at = rest.find('\n', at + 1))  // one path a line after the NUL
      d.paths.push_back(rest.substr(at + 1, rest.find('\n', at + 1) - at - 1));
    if (!raw.empty()) docs.push_back(d);
  }
  Rng rng{20240131};
  for (int i = 0; i < 8; ++i) {  // 400 transactions pass the 64 KiB at which a feed sizes its buffers up front
    const int transactions = i < 2 ? 400 : 1 + static_cast<int>(rng.Below(12));
    docs.push_back({"statement/" + std::to_string(i), Statement(rng, transactions, i % 2 == 1), {}});
  }
  for (int i = 0; i < 40; ++i) docs.push_back({"soup/" + std::to_string(i), Soup(rng), {}});
  for (size_t i = 0, originals = docs.size(); i < 120; ++i) {
    const Document& from = docs[rng.Below(originals)];
    if (from.text.size() <= 20000) docs.push_back({"mutant/" + std::to_string(i), Mutate(rng, from.text), {}});
  }
  // Files that may be absent draw on their own generator, so the rest stay put.
  for (const auto& [name, path] : CorpusFiles()) {
    const std::string text = Slurp(path);
    docs.push_back({"corpus/" + name, text, {}});
    Rng own{Fnv(name)};
    for (int i = 0; i < 3; ++i) docs.push_back({"corpus/" + name + "/" + std::to_string(i), Mutate(own, text), {}});
  }
  // Stops, colons and mismatches at every place in a machine word of text or name.
  for (int n = 1; n <= 17; ++n) {
    const std::string name(n, 'N'), text(n, 't'), id = std::to_string(n), p = "p" + name.substr(1) + ":";
    docs.push_back({"edge/text/" + id, "<A>" + text + "<" + name + ">" + text + "&amp;" + text + "\n" + text + "</A>",
                    {}});
    docs.push_back({"edge/prefix/" + id,
                    "<" + p + "Q xmlns:" + p.substr(0, n) + "='u'><" + p + "L>" + text + "</" + p + "L><" + p + "M>" +
                        text + "</" + p + "Q><" + name + "x:" + text + "/>",
                    {}});
    docs.push_back({"edge/mismatch/" + id, "<A><" + name + ">" + text + "</" + name.substr(1) + "M></A>", {}});
  }
  return docs;
}

// Everything a host or a service could observe of one parse. Options: 0 as the engine parses, 1 plain
// XML, 2 strict with HTML comments and extra tags. Feeding: 0 copied, 1 retained, 2 in pieces, 3 through a listener.
// Reads in order, each copied before the next: a read may move the text the
// one before it returned.
std::string Line(std::initializer_list<std::string> parts) {
  std::string line;
  for (const std::string& part : parts) line += part;
  return line + "\n";
}

std::string Picture(const Document& d, int options, int feeding) {
  OFXTagTable doc;
  doc.InitDefaults();
  if (options == 2) doc.SetExtraTags("A,B,x:C,LEAF");
  if (options != 1) doc.RegisterAggregates();
  doc.Reset();
  doc.SetKeepOriginalText(options != 2);
  doc.SetHTMLComments(options == 2);
  MarkupParser& parser = doc.Parser();
  for (auto flag : {MarkupParser::kAllowMoreThanOneRoot, MarkupParser::kAllowTextOutsideRoot,
                    MarkupParser::kIgnoreBadElementPrefixes, MarkupParser::kIgnoreBadAttributePrefixes}) {
    parser.SetFlag(flag, (flag > MarkupParser::kAllowTextOutsideRoot) == (options == 2));  // strict or lenient
  }
  const std::string& text = d.text;
  if (feeding == 3) parser.SetListener(&doc);
  int rc = feeding == 0 ? parser.Feed(text.data(), text.size()) : 0;
  rc = feeding == 1 ? parser.FeedRetained(text.data(), text.size()) : rc;
  Rng cuts{text.size()};
  for (size_t at = 0, take; feeding > 1 && at < text.size() && rc == 0; at += take) {
    take = std::min(feeding == 3 ? text.size() : 1 + cuts.Below(9), text.size() - at);
    rc = parser.Feed(text.data() + at, take);
  }
  std::string p = std::to_string(rc) + " " + parser.ErrorText() + "\n";
  const int finish = parser.Finish();
  p += std::to_string(finish) + " " + parser.ErrorText() + "\n";
  DocumentTree& tree = doc.Tree();
  p += std::to_string(tree.Size()) + ":" + std::string(tree.Arena(), tree.Size()) + "\n";
  p.append(parser.KeptText().View()) += "\n";
  if (tree.IsEmpty()) return p;
  int elements = 0;  // elements as "*N" reaches them: all of a small tree, a sample of a large one
  for (uint32_t r = 0, size; r < tree.Size(); r += size) {
    std::memcpy(&size, tree.Arena() + r + 4, 4);
    if (tree.Arena()[r] == 'E' && (++elements < 200 || elements % 101 == 0)) {
      p += Line({std::to_string(doc.SelectPath("*" + std::to_string(r))), doc.CurrentPath(), "|", doc.ElementSubtree(),
                 "|", doc.ElementContents(), "|" + std::to_string(doc.NamespaceCount())});
    }
  }
  std::vector<std::string> paths = {"/", "/OFX/BANKMSGSRSV1/STMTTRNRS/STMTRS/BANKTRANLIST/STMTTRN[2]", "../[last()]",
                                    "NAME", "..", "STMTTRN[3]/TRNAMT", "/A/B", "[last()-1]", "x:C", "/OFX/[2]"};
  paths.insert(paths.end(), d.paths.begin(), d.paths.end());
  for (const std::string& path : paths) {
    const bool has = doc.HasPath(path);
    const int select = doc.SelectPath(path);
    p += Line({path + ":" + std::to_string(has) + std::to_string(select), doc.CurrentPath(), "|", doc.ElementName(), "|",
               doc.ElementText(), "|" + std::to_string(doc.ChildCount()) + "|", doc.GetLastError()});
  }
  return p;
}

TEST(ParseDigestTest, ParsesAsRecorded) {
  std::ifstream in(Source() + "/tests/markup/parse_digests.txt");
  std::map<std::string, std::string> expected;
  for (std::string name, digest; in >> name >> digest;) expected[name] = digest;
  ASSERT_FALSE(expected.empty()) << "parse_digests.txt not found";
  std::ofstream out;
  if (std::getenv("ORVELAN_DIGEST_OUT") != nullptr) out.open(std::getenv("ORVELAN_DIGEST_OUT"));
  int compared = 0;
  for (const Document& d : Documents()) {
    SCOPED_TRACE(d.name);
    std::string all;
    for (int options = 0; options < 3; ++options) {
      const std::string picture = Picture(d, options, 0);
      for (int feeding = 1; feeding < 4; ++feeding) ASSERT_EQ(Picture(d, options, feeding), picture) << feeding;
      all += picture;
    }
    char digest[17];
    std::snprintf(digest, sizeof digest, "%016llx", static_cast<unsigned long long>(Fnv(all)));
    if (out.is_open()) out << d.name << " " << digest << "\n";
    const auto found = expected.find(d.name);
    if (found == expected.end() && d.name.rfind("corpus/", 0) == 0) continue;  // a file added since the record
    EXPECT_TRUE(found != expected.end() && found->second == digest) << "digest " << digest;
    compared += found != expected.end();
  }
  EXPECT_GE(compared, 150);
}

}  // namespace
}  // namespace orvelan
