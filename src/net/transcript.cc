#include "net/transcript.h"

namespace orvelan {

int Transcript::Open(const char* path) {
  file_.Close();
  return file_.Create(path);
}

std::string Transcript::Escape(std::string_view data) {
  std::string out;
  out.reserve(data.size() + data.size() / 8);
  for (char ch : data) {
    const auto c = static_cast<unsigned char>(ch);
    if (c == '\r' || c == '\n' || (c >= 32 && c <= 126)) {
      if (c == '\\' || c == '$' || c == '"' || c == '{' || c == '}' || c == '[' || c == ']') out += '\\';
      out += ch;
    } else {
      out += '\\';
      out += static_cast<char>('0' + (c >> 6));
      out += static_cast<char>('0' + ((c >> 3) & 7));
      out += static_cast<char>('0' + (c & 7));
    }
  }
  return out;
}

int Transcript::Record(bool sent, std::string_view data) {
  if (!file_.IsOpen()) return 0;
  std::string entry = sent ? "\r\nexpect -exact \"" : "\r\nsend -nonewline \"";
  entry += Escape(data);
  entry += "\"\r\n";
  return file_.Write(entry.data(), entry.size());
}

}  // namespace orvelan
