#pragma once
#include <dirent.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ofx/message_set_table.h"
#include "ofx/ofx_client.h"

namespace orvelan {

// The smallest service over the engine: a fixed bank statement request and a
// ParseResponse that only counts its calls (or fails on demand), so tests
// see exactly what the engine adds.
class TestOFXService : public OFXClient {
 public:
  static constexpr char kStatementRequest[] =
      "<STMTTRNRQ>\r\n<TRNUID>~0~\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~\r\n</BANKACCTFROM>\r\n"
      "</STMTRQ>\r\n</STMTTRNRQ>\r\n";
  static constexpr char kStatementRequest2[] =
      "<STMTTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~</BANKID>\r\n"
      "</BANKACCTFROM>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n";

  int parse_calls = 0;
  int parse_result = 0;
  std::string root_at_parse;  // the cursor's path when ParseResponse ran

  int BuildMessageSets(ByteString& out, bool wrapped) override {
    ByteString trnuid;
    if (int rc = NewTransactionId(trnuid); rc != 0) return rc;
    RequestTemplate request;
    request.Load(OFXVersion()[0] == '2' ? kStatementRequest2 : kStatementRequest);
    const std::string_view arguments[] = {trnuid.View(), "123456789"};
    if (!wrapped) return request.Expand(out, arguments, 2, true);
    MessageSetTable::AppendOpen(out, MessageSetTable::kStatement);
    request.Expand(out, arguments, 2, false);
    return MessageSetTable::AppendClose(out, MessageSetTable::kStatement);
  }
  int ParseResponse() override {
    ++parse_calls;
    root_at_parse = Document().CurrentPath();
    return parse_result;
  }

  // Sets the fields CheckRequiredFields asks for.
  void SetCredentials() {
    SetOFXUser("user");
    SetOFXPassword("secret");
    SetOFXAppId("QWIN");
    SetOFXAppVersion("2500");
    SetFIOrganization("Test Bank");
  }
};

// `text` with the first `from` replaced by `to` (unchanged when absent).
inline std::string Replace(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

inline std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A path in the test temporary directory, unique to this process and removed
// (with the given extensions) when the object goes.
class TempFile {
 public:
  explicit TempFile(const std::string& tag, std::vector<std::string> extensions = {""})
      : path_(::testing::TempDir() + "orvelan_" + tag + "_" + std::to_string(getpid())),
        extensions_(std::move(extensions)) {}
  ~TempFile() {
    for (const std::string& e : extensions_) std::remove((path_ + e).c_str());
  }
  const std::string& path() const { return path_; }
  const char* c_str() const { return path_.c_str(); }
  void Write(const std::string& text) const { std::ofstream(path_, std::ios::binary) << text; }
  std::string Read(const std::string& extension = "") const { return Slurp(path_ + extension); }

 private:
  std::string path_;
  std::vector<std::string> extensions_;
};

// The real-world OFX files as (name, path), none when there is no corpus.
inline std::vector<std::pair<std::string, std::string>> CorpusFiles() {
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  const char* set = std::getenv("ORVELAN_CORPUS_DIR");
  const std::string dir = set != nullptr ? set : std::string(source != nullptr ? source : ".") + "/../shared/corpus";
  std::vector<std::pair<std::string, std::string>> files;
  if (DIR* d = opendir(dir.c_str())) {
    while (const dirent* entry = readdir(d)) {
      if (entry->d_name[0] != '.') files.emplace_back(entry->d_name, dir + "/" + entry->d_name);
    }
    closedir(d);
  }
  return files;
}

}  // namespace orvelan
