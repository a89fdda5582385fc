// The actions that move, read, write and otherwise handle files. Paths are texts that the engine expands: they may
// hold tokens and a tilde.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/ActionImageSource.h"
#include "Actions/HBaseAction.h"

enum class FileOperation { kReveal, kMove, kCopy, kDuplicate, kTrash, kDelete, kRecursiveDelete };
inline constexpr TextView kFileOperationNames[] = { u"Reveal", u"Move", u"Copy", u"Duplicate", u"Trash", u"Delete",
    u"RecursiveDelete" };
static_assert( std::size( kFileOperationNames ) == std::size_t( FileOperation::kRecursiveDelete ) + 1 );
constexpr auto NamesOf( FileOperation )
{
    return std::span( kFileOperationNames );
}

class AFile final : public HActionOf<AFile, HActionType::kFile>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    [[nodiscard]] bool NeedsDestination() const;

    FileOperation mOperation = FileOperation::kReveal;
    XText mSource = SharedText<u"">();
    XText mDestination = SharedText<u"">(); // kept while the operation has none
};

/// Where the contents of a file go.
enum class ReadFileDestination { kClipboard, kTriggerClipboard, kNamedClipboard, kVariable };
inline constexpr TextView kReadFileDestinationNames[] = { u"Clipboard", u"TriggerClipboard", u"NamedClipboard",
    u"Variable" };
static_assert( std::size( kReadFileDestinationNames ) == std::size_t( ReadFileDestination::kVariable ) + 1 );
constexpr auto NamesOf( ReadFileDestination )
{
    return std::span( kReadFileDestinationNames );
}

class AReadFile final : public HActionOf<AReadFile, HActionType::kReadFile>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ReadFileDestination mDestination = ReadFileDestination::kClipboard;
    ClipboardReference mClipboard; // of a named clipboard
    XText mSource = SharedText<u"">();
    XText mVariable = SharedText<u"VarName">(); // kept while something else is the destination
};

/// What is written to a file.
enum class WriteFileSource { kClipboard, kTriggerClipboard, kNamedClipboard, kVariable, kText, kStyledText };
inline constexpr TextView kWriteFileSourceNames[] = { u"Clipboard", u"TriggerClipboard", u"NamedClipboard", u"Variable",
    u"Text", u"StyledText" };
static_assert( std::size( kWriteFileSourceNames ) == std::size_t( WriteFileSource::kStyledText ) + 1 );
constexpr auto NamesOf( WriteFileSource )
{
    return std::span( kWriteFileSourceNames );
}

enum class WriteFileFormat {
    kPlainText,
    kRTF,
    kRTFD,
    kSimpleText,
    kHTML,
    kWebArchive,
    kWordDoc,
    kWordML,
    kOfficeOpenXML,
    kOpenDocument,
    kPNG,
    kTIFF,
    kJPEG,
    kBMP,
    kGIF,
};
inline constexpr TextView kWriteFileFormatNames[] = { u"PlainText", u"RTF", u"RTFD", u"SimpleText", u"HTML",
    u"WebArchive", u"WordDoc", u"WordML", u"OfficeOpenXML", u"OpenDocument", u"PNG", u"TIFF", u"JPEG", u"BMP", u"GIF" };
static_assert( std::size( kWriteFileFormatNames ) == std::size_t( WriteFileFormat::kGIF ) + 1 );
constexpr auto NamesOf( WriteFileFormat )
{
    return std::span( kWriteFileFormatNames );
}

enum class TextFileEncoding { kMacRoman, kLatin1, kUTF8, kUTF16 };
inline constexpr TextView kTextFileEncodingNames[] = { u"MacRoman", u"Latin1", u"UTF8", u"UTF16" };
static_assert( std::size( kTextFileEncodingNames ) == std::size_t( TextFileEncoding::kUTF16 ) + 1 );
constexpr auto NamesOf( TextFileEncoding )
{
    return std::span( kTextFileEncodingNames );
}

class AWriteFile final : public HActionOf<AWriteFile, HActionType::kWriteFile>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    void DescribeFormat( HFieldVisitor& inVisitor );
    [[nodiscard]] Text GetSourceDescription() const;

    WriteFileSource mSource = WriteFileSource::kClipboard;
    WriteFileFormat mFormat = WriteFileFormat::kPlainText;
    TextFileEncoding mEncoding = TextFileEncoding::kMacRoman;
    XText mDestination = SharedText<u"">();
    bool mAppend = false;
    ClipboardReference mClipboard; // of a named clipboard
    StyledTextSource mText;        // this and the variable are kept while something else is the source
    XText mVariable = SharedText<u"VarName">();
};

class ASetFileIcon final : public HActionOf<ASetFileIcon, HActionType::kSetFileIcon>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override { return mImage.CouldBeRegExStrings(); }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    ActionImageSource mImage;
};

class ANewFolder final : public HActionOf<ANewFolder, HActionType::kNewFolder>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mDestination = SharedText<u"">();
    bool mCreateIntermediate = false;
};

/// Puts the pieces of a path into variables, each of which may be left out.
class ASplitPath final : public HActionOf<ASplitPath, HActionType::kSplitPath>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    // The variables.
    XText mParent = SharedText<u"">();
    XText mFileName = SharedText<u"">();
    XText mBaseName = SharedText<u"">();
    XText mExtension = SharedText<u"">();
    bool mAbbreviateWithTilde = false;
};
