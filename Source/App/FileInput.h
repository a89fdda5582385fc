// Files that the user named, read whole; "-" is standard input. Failures are sentences for the user. Main thread.
#pragma once

#include "CFMethods/PropertyListCodec.h"
#include "XCAF/XFileWriting.h"

#include <functional>
#include <stdexcept>
#include <string>

/// What a file can't be read or written for: a whole sentence that names the file and what can be done.
class FileTrouble : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class FileInput
{
public:
    /// The largest file that is read.
    static constexpr std::size_t kMostBytes = std::size_t( 512 ) << 20;

    /// Reads standard input whole, up to so many bytes.
    using ReadStandardInput = std::function<XFileContent( std::size_t inLimit )>;

    explicit FileInput( ReadStandardInput inReader ) : mReadStandardInput( std::move( inReader ) ) {}

    /// The bytes; never none. Throws FileTrouble: missing, a folder, not permitted, too large, empty.
    [[nodiscard]] XBytes Read( const std::string& inPath ) const;

private:
    ReadStandardInput mReadStandardInput;
};

/// What a file of the user's says.
struct PropertyListInput
{
    enum class Format : std::uint8_t { kBinary, kXML, kJSON };

    __SafeCFPropertyList mValue;       ///< null exactly when there is a fault
    std::optional<std::string> mFault; ///< one clause, with the position
    std::vector<XPlistNote> mNotes;    ///< what the file holds and the value doesn't
    Format mFormat;
};

/// "binary", "xml", "json".
[[nodiscard]] const char* NameOf( PropertyListInput::Format inFormat );

/// Reads any of the forms, told apart by their content.
[[nodiscard]] PropertyListInput ReadAnyPropertyList(
    std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits = {} );

/// The value in a file. Throws FileTrouble, also when it is no property list.
[[nodiscard]] PropertyListInput ReadPropertyListFile(
    const FileInput& inInput, const std::string& inPath, const XPlistLimits& inLimits = {} );
