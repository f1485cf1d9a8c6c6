// Differential check of the parser and tree against digests recorded from an
// earlier build: real files, generated statements and token soup, and
// mutations of them. A digest covers the codes and texts of the parse and of
// Finish, every arena byte (records, offsets, positions), the kept text, and
// the path, markup and contents of every element. The parser must give the
// same picture however the bytes arrive: copied or retained, whole, in
// pieces, or a byte at a time through a listener.
//
// After a deliberate change, rerun with ORVELAN_DIGEST_OUT=file and review
// the differences before replacing parse_digests.txt with it.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ofx/ofx_tag_table.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

struct Rng {
  uint64_t state;
  uint64_t Next() {  // splitmix64: the same sequence on every platform
    uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  size_t Below(size_t n) { return static_cast<size_t>(Next() % n); }
};

uint64_t Fnv(const std::string& s) {
  uint64_t h = 14695981039346656037ull;
  for (unsigned char c : s) h = (h ^ c) * 1099511628211ull;
  return h;
}

struct Document { std::string name; std::string text; std::vector<std::string> paths; };

// An OFX statement with a little of everything a bank sends.
std::string Statement(Rng& rng, int transactions, bool xml) {
  const char* nl = rng.Below(3) == 0 ? "\n" : "\r\n";
  std::string s = xml ? "<?xml version=\"1.0\"?>\r\n<?OFX OFXHEADER=\"200\" VERSION=\"211\"?>\r\n"
                      : "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n";
  const auto leaf = [&](const char* name, const std::string& value) {
    s += std::string("<") + name + ">" + value;
    if (xml) s += std::string("</") + name + ">";
    s += nl;
  };
  s += "<OFX>" + std::string(nl) + "<SIGNONMSGSRSV1><SONRS><STATUS>";
  leaf("CODE", "0");
  leaf("SEVERITY", "INFO");
  s += "</STATUS>";
  leaf("DTSERVER", "20240131120000.000[-5:EST]");
  s += "</SONRS></SIGNONMSGSRSV1>" + std::string(nl) + "<BANKMSGSRSV1><STMTTRNRS>";
  leaf("TRNUID", "1001");
  s += "<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS><STMTRS>";
  leaf("CURDEF", "USD");
  s += "<BANKACCTFROM>";
  leaf("BANKID", "121000248");
  leaf("ACCTID", "0123456789");
  leaf("ACCTTYPE", "CHECKING");
  s += "</BANKACCTFROM><BANKTRANLIST>";
  leaf("DTSTART", "20240101");
  static const char* const kNames[] = {"GROCERY &amp; CO", "  PADDED  NAME  ", "CAF\xC3\xA9 #12", "A&#66;C &#x41;",
                                       "x &lt; y &bogus", "TAB\tIN", "<![CDATA[ <raw> ]]>", ""};
  for (int i = 0; i < transactions; ++i) {
    s += "<STMTTRN>" + std::string(nl);
    leaf("TRNTYPE", i % 4 == 0 ? "CREDIT" : "DEBIT");
    leaf("DTPOSTED", "202401" + std::to_string(10 + i % 20) + (i % 3 ? "" : "120000.000[-5:EST]"));
    leaf("TRNAMT", (i % 4 == 0 ? "" : "-") + std::to_string(i % 990) + "." + std::to_string(10 + i % 90));
    leaf("FITID", std::to_string(1000000 + i));
    if (rng.Below(4) == 0) leaf("CHECKNUM", std::to_string(1000 + i));
    leaf("NAME", kNames[rng.Below(8)]);
    if (rng.Below(3) == 0) leaf("MEMO", "memo " + std::to_string(i) + " <!-- c -->end");
    s += "</STMTTRN>" + std::string(nl);
  }
  s += "</BANKTRANLIST><LEDGERBAL>";
  leaf("BALAMT", "1234.56");
  s += "</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>" + std::string(nl);
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
  static const char kSpecial[] = "<>&/!?-[]'\"=:; \r\n#xA";
  for (size_t n = 1 + rng.Below(4); n > 0 && !s.empty(); --n) {
    const size_t at = rng.Below(s.size());
    switch (rng.Below(4)) {
      case 0: s[at] = kSpecial[rng.Below(sizeof kSpecial - 1)]; break;
      case 1: s.insert(at, 1, kSpecial[rng.Below(sizeof kSpecial - 1)]); break;
      case 2: s.erase(at, 1 + rng.Below(8)); break;
      default: s.resize(at); break;
    }
  }
  return s;
}

std::vector<Document> Documents() {
  std::vector<Document> docs;
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  for (const char* seed : {"broken", "html_comments", "sgml_leaves", "sgml_statement", "xml_namespaces"}) {
    const std::string raw = Slurp(std::string(source != nullptr ? source : ".") + "/fuzz/seeds/markup_fuzz/" + seed);
    if (raw.empty()) continue;
    const std::string rest = raw.substr(1);
    const size_t nul = rest.find('\0');
    Document d{std::string("seed/") + seed, rest.substr(0, nul), {}};
    for (size_t at = nul; at != std::string::npos && at < rest.size();) {
      const size_t lf = rest.find('\n', at + 1);
      d.paths.push_back(rest.substr(at + 1, lf == std::string::npos ? std::string::npos : lf - at - 1));
      at = lf;
    }
    docs.push_back(d);
  }
  Rng rng{20240131};
  for (int i = 0; i < 8; ++i) {
    // 400 transactions pass the 64 KiB at which a feed sizes its buffers up front.
    const int transactions = i < 2 ? 400 : 1 + static_cast<int>(rng.Below(12));
    docs.push_back({"statement/" + std::to_string(i), Statement(rng, transactions, i % 2 == 1), {}});
  }
  for (int i = 0; i < 40; ++i) docs.push_back({"soup/" + std::to_string(i), Soup(rng), {}});
  const size_t originals = docs.size();
  for (int i = 0; i < 120; ++i) {
    const Document& from = docs[rng.Below(originals)];
    if (from.text.size() > 20000) continue;
    docs.push_back({"mutant/" + std::to_string(i), Mutate(rng, from.text), {}});
  }
  // Files that may be absent draw on their own generator, so the rest stay put.
  for (const auto& [name, path] : CorpusFiles()) {
    const std::string text = Slurp(path);
    docs.push_back({"corpus/" + name, text, {}});
    Rng own{Fnv(name)};
    for (int i = 0; i < 3; ++i) docs.push_back({"corpus/" + name + "/" + std::to_string(i), Mutate(own, text), {}});
  }
  return docs;
}

struct Options {
  bool aggregates, keep_text, html_comments, strict, extra;
};
const Options kOptions[] = {
    {true, true, false, false, false},   // as the engine parses
    {false, true, false, false, false},  // plain XML
    {true, false, true, true, true},
};

enum class Feeding { kCopied, kRetained, kPieces, kListener };

void Configure(OFXTagTable& doc, const Options& o) {
  doc.InitDefaults();
  if (o.extra) doc.SetExtraTags("A,B,x:C,LEAF");
  if (o.aggregates) doc.RegisterAggregates();
  doc.Reset();
  doc.SetKeepOriginalText(o.keep_text);
  doc.SetHTMLComments(o.html_comments);
  doc.Parser().SetFlag(MarkupParser::kIgnoreBadElementPrefixes, o.strict);
  doc.Parser().SetFlag(MarkupParser::kIgnoreBadAttributePrefixes, o.strict);
  doc.Parser().SetFlag(MarkupParser::kAllowTextOutsideRoot, !o.strict);
  doc.Parser().SetFlag(MarkupParser::kAllowMoreThanOneRoot, !o.strict);
}

// Everything a host or a service could observe of one parse.
std::string Picture(const Document& d, const Options& o, Feeding feeding) {
  OFXTagTable doc;
  Configure(doc, o);
  MarkupParser& parser = doc.Parser();
  const std::string& text = d.text;
  int rc = 0;
  switch (feeding) {
    case Feeding::kCopied: rc = parser.Feed(text.data(), text.size()); break;
    case Feeding::kRetained: rc = parser.FeedRetained(text.data(), text.size()); break;
    case Feeding::kPieces:
    case Feeding::kListener: {
      if (feeding == Feeding::kListener) parser.SetListener(&doc);
      Rng cuts{text.size()};
      for (size_t at = 0; at < text.size() && rc == 0;) {
        const size_t n = feeding == Feeding::kListener ? text.size() : 1 + cuts.Below(9);
        const size_t take = n < text.size() - at ? n : text.size() - at;
        rc = parser.Feed(text.data() + at, take);
        at += take;
      }
      break;
    }
  }
  std::string p = std::to_string(rc) + " " + parser.ErrorText() + "\n";
  const int finish = parser.Finish();
  p += std::to_string(finish) + " " + parser.ErrorText() + "\n";
  DocumentTree& tree = doc.Tree();
  p += std::to_string(tree.Size()) + ":" + std::string(tree.Arena(), tree.Size()) + "\n";
  p += parser.KeptText().View();
  p += "\n";
  if (tree.IsEmpty()) return p;
  // Elements as "*N" reaches them: all of a small tree, a sample of a large one.
  int elements = 0;
  for (uint32_t r = 0; r < tree.Size();) {
    uint32_t size;
    std::memcpy(&size, tree.Arena() + r + 4, 4);
    if (tree.Arena()[r] == 'E' && (++elements < 200 || elements % 101 == 0)) {
      const std::string at = "*" + std::to_string(r);
      p += std::to_string(doc.SelectPath(at)) + doc.CurrentPath() + "|" + doc.ElementSubtree() + "|" +
           doc.ElementContents() + "|" + std::to_string(doc.NamespaceCount()) + "\n";
    }
    r += size;
  }
  std::vector<std::string> paths = {"/", "/OFX/BANKMSGSRSV1/STMTTRNRS/STMTRS/BANKTRANLIST/STMTTRN[2]", "../[last()]",
                                    "NAME", "..", "STMTTRN[3]/TRNAMT", "/A/B", "[last()-1]", "x:C", "/OFX/[2]"};
  paths.insert(paths.end(), d.paths.begin(), d.paths.end());
  for (const std::string& path : paths) {
    const bool has = doc.HasPath(path);
    const int select = doc.SelectPath(path);
    p += path + ":" + std::to_string(has) + std::to_string(select) + doc.CurrentPath() + "|" + doc.ElementName() + "|" +
         doc.ElementText() + "|" + std::to_string(doc.ChildCount()) + "|" + doc.GetLastError() + "\n";
  }
  return p;
}

std::string Hex(uint64_t v) {
  char out[17];
  std::snprintf(out, sizeof out, "%016llx", static_cast<unsigned long long>(v));
  return out;
}

TEST(ParseDigestTest, ParsesAsRecorded) {
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  std::ifstream in(std::string(source != nullptr ? source : ".") + "/tests/markup/parse_digests.txt");
  std::map<std::string, std::string> expected;
  for (std::string name, digest; in >> name >> digest;) expected[name] = digest;
  ASSERT_FALSE(expected.empty()) << "parse_digests.txt not found";

  const char* out_path = std::getenv("ORVELAN_DIGEST_OUT");
  std::ofstream out;
  if (out_path != nullptr) out.open(out_path);
  int compared = 0;
  for (const Document& d : Documents()) {
    SCOPED_TRACE(d.name);
    std::string all;
    for (const Options& o : kOptions) {
      const std::string picture = Picture(d, o, Feeding::kCopied);
      for (Feeding f : {Feeding::kRetained, Feeding::kPieces, Feeding::kListener}) {
        ASSERT_EQ(Picture(d, o, f), picture) << "feeding " << static_cast<int>(f);
      }
      all += picture;
    }
    const std::string digest = Hex(Fnv(all));
    if (out.is_open()) out << d.name << " " << digest << "\n";
    const auto found = expected.find(d.name);
    if (found == expected.end()) {
      ADD_FAILURE() << "no recorded digest";
      continue;
    }
    EXPECT_EQ(digest, found->second);
    ++compared;
  }
  EXPECT_GE(compared, 150);
}

}  // namespace
}  // namespace orvelan
