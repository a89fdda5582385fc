// The short way through XML property lists as programs write them. Private to the XML codec.
#pragma once

#include "CFMethods/XMLPropertyListBuilder.h"

/// Reads a document that uses nothing of XML but the header every writer gives, plain tags, text and
/// the common references. False when there is anything else in it, or any fault: then the builder is
/// of no further use, and the XML parser has to judge the document. What is read here is read as
/// the parser would have it read, about three times as fast.
[[nodiscard]] bool ReadPlainXMLPropertyList( std::string_view inUTF8, XMLPlistBuilder& ioBuilder );
