#pragma once
#include <string_view>

// The OFX log: the last request and response of one exchange between fixed
// banners. The request part creates the file anew, the response part appends
// to it, so the file holds the last exchange only.
//
//   OFXLogFile log(path);
//   if (int rc = log.WriteRequest(masked_request); rc != 0) ReportError(rc, log.ErrorText());
//   ... post ...
//   if (int rc = log.WriteResponse(body); rc != 0) ReportError(rc, log.ErrorText());
//
// Only the request or response text's write is checked; the banners are not.
// Not thread-safe.
namespace orvelan {

class OFXLogFile {
 public:
  // `path` is not copied and must outlive the object.
  explicit OFXLogFile(const char* path) : path_(path) {}

  // 0, or 306, 304 or 307 with ErrorText naming the failed step.
  int WriteRequest(std::string_view request);
  // 0, or 302, 304 or 307 with ErrorText naming the failed step.
  int WriteResponse(std::string_view response);
  // The message of the last failure; "" when none.
  const char* ErrorText() const { return error_text_; }

 private:
  int Fail(int code, const char* text);

  const char* path_;
  const char* error_text_ = "";
};

}  // namespace orvelan
