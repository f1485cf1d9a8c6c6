#pragma once

// Result codes of the parser, the tree and its path queries, and the texts a
// host sees for them.
namespace orvelan {

inline constexpr int kErrInvalidNamespaceIndex = 103;
inline constexpr int kErrNoNamespaces = 104;
inline constexpr int kErrInvalidElementIndex = 105;
inline constexpr int kErrNoElements = 106;
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

// The fixed message of a code; "xmlpimpl: unknown error" for codes without one.
const char* MarkupErrorText(int code);

}  // namespace orvelan
