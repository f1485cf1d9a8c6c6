#pragma once

// Every result code of the library, in one table. 0 is success; other values
// are codes of the families below or system error numbers (errno). The texts a
// host sees sit beside a code where the code has one fixed text; codes whose
// text depends on what failed get it from the layer that failed.
//
// A few numbers belong to two families (102, 104, 106, 202, 306): the families
// never meet in one operation, so the host reads them apart by the operation.
namespace orvelan {

inline constexpr int kOk = 0;
// An unknown setting name, or an unknown or read-only property identifier.
inline constexpr int kErrUnknown = -1;
inline constexpr char kTextUnknownSetting[] = "Unknown config setting.";
// The default text's tail for a code the system error table does not know.
inline constexpr char kTextNoDescription[] = "(no description available)";

// The client certificate store was given no bytes.
inline constexpr int kErrCertStore = 1;
inline constexpr char kTextCertStoreNotSet[] = "Either the store or its length not set correctly";
// EAGAIN: a socket or TLS operation would block. A value, never a failure.
inline constexpr int kErrWouldBlock = 11;

// Socket and tunnel.
inline constexpr int kErrRemotePortBusy = 100;
inline constexpr int kErrRemoteHostBusy = 101;
inline constexpr int kErrInvalidAddress = 102;
inline constexpr int kErrAlreadyConnected = 104;
inline constexpr int kErrLocalPortBusy = 106;
inline constexpr int kErrNotConnected = 107;
inline constexpr int kErrMaxLineLengthBusy = 112;
inline constexpr int kErrZeroPort = 116;
inline constexpr int kErrTunnel = 118;

// Document indexes (the markup family's 100s).
inline constexpr int kErrInvalidNamespaceIndex = 103;
inline constexpr int kErrNoNamespaces = 104;
inline constexpr int kErrInvalidElementIndex = 105;
inline constexpr int kErrNoElements = 106;

// HTTP.
inline constexpr int kErrBusy = 143;
inline constexpr char kTextBusy[] = "Busy performing current action.";
inline constexpr int kErrHttp = 151;
inline constexpr int kErrNoServer = 152;
// A gzip body whose header is not gzip's (the socket family's 102 reused).
inline constexpr int kErrBadGzipHeader = 102;
inline constexpr int kErrBadScheme = 153;

// Memory could not be allocated.
inline constexpr int kErrOutOfMemory = 200;
inline constexpr char kTextOutOfMemory[] = "Out of memory.";

// Markup parser, tree and path queries; their texts are MarkupErrorText's.
inline constexpr int kErrUnbalancedTag = 201;
inline constexpr int kErrBadElementPrefix = 202;
inline constexpr int kErrBadAttributePrefix = 203;
inline constexpr int kErrInvalidMarkup = 204;
inline constexpr int kErrInvalidEndState = 205;
inline constexpr int kErrUnbalancedDocument = 206;
inline constexpr int kErrInvalidPath = 207;
inline constexpr int kErrNoSuchChild = 208;
inline constexpr int kErrTopMismatch = 209;
inline constexpr int kErrNoTree = 210;
inline constexpr int kErrMoreThanOneRoot = 211;
inline constexpr int kErrTextOutsideRoot = 212;
inline constexpr int kErrNoSubtree = 214;
inline constexpr int kErrUtf16 = 306;

// OFX engine: a value the request cannot carry, or a field a record needs.
inline constexpr int kErrInvalidValue = 202;

// TLS and certificates.
inline constexpr int kErrPfxStore = 271;
inline constexpr int kErrNoMatchingCert = 272;
inline constexpr int kErrCertRejected = 276;
inline constexpr int kErrTlsSetup = 282;
// A TLS connection or certificate operation failed; the text says which.
inline constexpr int kErrTlsFailure = 287;
inline constexpr int kErrStoreTypeNotSupported = 306;

// A list index reached through X_CheckIndex.
inline constexpr int kErrCheckIndex = 280;

// Interrupted wait or time-out.
inline constexpr int kErrTimeout = 301;
inline constexpr char kTextInterrupted[] = "Interrupted.";
inline constexpr char kTextTimeout[] = "Timeout.";

// Files: the OFX log and data files, the HTTP layer's LocalFile.
inline constexpr int kErrCannotOpen = 302;
inline constexpr int kErrLocalFile = kErrCannotOpen;  // opening or writing LocalFile
inline constexpr int kErrCannotWrite = 304;
inline constexpr int kErrCannotRead = 305;
inline constexpr int kErrCannotCreate = 306;
inline constexpr int kErrCannotClose = 307;

// A position or index outside the valid range.
inline constexpr int kErrIndexOutOfRange = 432;
// A table that holds nothing was asked for its last entry.
inline constexpr int kErrTableEmpty = 433;
// No response available, or a writer asked to overflow its buffer.
inline constexpr int kErrNoResponse = 508;
inline constexpr char kTextNoResponse[] = "No response available from the server.";
// A date that does not fit the pattern.
inline constexpr int kErrCannotParseDate = 676;
inline constexpr char kTextCannotParseDate[] = "Cannot parse date.";

// OFX exchange.
// A field the request needs is empty, or an element the response needs is missing.
inline constexpr int kErrMissingField = 2000;
inline constexpr char kTextMissingElement[] = "Expected element missing from server response.";
// The server's status aggregate reported an error.
inline constexpr int kErrServerStatus = 2001;
inline constexpr int kErrInvalidOFXResponse = 2002;
inline constexpr char kTextInvalidOFXResponse[] = "Invalid OFX response.";
inline constexpr int kErrUnknownOFXTags = 2003;
inline constexpr char kTextUnknownOFXTags[] = "OFX response contains unknown element tags.";
// Repairs of lenient reading, fired as Error events while the document is
// read on; never a result. No OFX status code lies in 2100 to 2105.
inline constexpr int kRepairLearnedAggregate = 2100;
inline constexpr int kRepairClosedAggregate = 2101;
inline constexpr int kRepairHeaderAsTags = 2102;
inline constexpr int kRepairHeaderInComment = 2103;
inline constexpr int kRepairXmlDeclaration = 2104;
inline constexpr int kRepairTextBeforeHeader = 2105;

}  // namespace orvelan
