// A zip file is read from its end: a record that says where the directory is, then the directory, then, for each of its
// entries, a header of its own before the data. All three tell the same things, and attacks live off the places
// where they differ. So here they have to agree, and the parts have to lie one behind the other:
//
//     header data [descriptor]  header data [descriptor]  ...  directory  end record  comment
#include "Macros/ZipLayout.h"

#include "CFMethods/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <sys/stat.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace
{
struct Fault
{
    std::string mText;
};

constexpr std::uint32_t kEndRecord = 0x06054b50, kDirectoryEntry = 0x02014b50, kLocalHeader = 0x04034b50;
constexpr std::uint32_t kDescriptor = 0x08074b50, kZip64Locator = 0x07064b50;
constexpr std::size_t kEndSize = 22, kDirectoryEntrySize = 46, kLocalSize = 30, kZip64LocatorSize = 20;
constexpr std::size_t kMostComment = 65535;

enum Flags : std::uint16_t { kEncrypted = 1, kSizesFollow = 8, kPatch = 32, kStronglyEncrypted = 64, kMasked = 8192 };
enum Method : std::uint16_t { kStored = 0, kDeflated = 8 };

// Little-endian numbers at places that are checked.
class Bytes
{
public:
    explicit Bytes( std::span<const std::uint8_t> inBytes ) : mBytes( inBytes ) {}

    [[nodiscard]] std::size_t Size() const { return mBytes.size(); }
    [[nodiscard]] std::uint16_t Get16( std::uint64_t inAt ) const
    {
        const auto bytes = Part( inAt, 2 );
        return std::uint16_t( bytes[0] | bytes[1] << 8 );
    }
    [[nodiscard]] std::uint32_t Get32( std::uint64_t inAt ) const
    {
        return Get16( inAt ) | std::uint32_t( Get16( inAt + 2 ) ) << 16;
    }
    [[nodiscard]] std::string GetString( std::uint64_t inAt, std::size_t inLength ) const
    {
        const auto bytes = Part( inAt, inLength );
        return { bytes.begin(), bytes.end() };
    }

private:
    [[nodiscard]] std::span<const std::uint8_t> Part( std::uint64_t inAt, std::uint64_t inLength ) const
    {
        if ( inAt > mBytes.size() or inLength > mBytes.size() - inAt )
            throw Fault{ "it is cut off" };
        return mBytes.subspan( std::size_t( inAt ), std::size_t( inLength ) );
    }

    std::span<const std::uint8_t> mBytes;
};

// The record that reaches exactly to the end, comment included.
std::uint64_t FindEnd( const Bytes& inBytes )
{
    if ( inBytes.Size() < kEndSize )
        throw Fault{ "it is no zip file" };
    const std::uint64_t last = inBytes.Size() - kEndSize;
    const std::uint64_t first = last > kMostComment ? last - kMostComment : 0;
    for ( std::uint64_t at = last + 1; at-- > first; )
    {
        if ( inBytes.Get32( at ) != kEndRecord )
            continue;
        if ( at + kEndSize + inBytes.Get16( at + 20 ) != inBytes.Size() )
            throw Fault{ "something lies behind its end" };
        return at;
    }
    throw Fault{ "it is no zip file" };
}

struct Directory
{
    std::uint64_t mBegin, mEnd;
    std::size_t mCount;
};

Directory FindDirectory( const Bytes& inBytes )
{
    const std::uint64_t end = FindEnd( inBytes );
    const std::size_t count = inBytes.Get16( end + 10 );
    const std::uint64_t size = inBytes.Get32( end + 12 ), begin = inBytes.Get32( end + 16 );
    if ( inBytes.Get16( end + 4 ) != 0 or inBytes.Get16( end + 6 ) != 0 or inBytes.Get16( end + 8 ) != count )
        throw Fault{ "it is spread over several disks" };
    if ( end >= kZip64LocatorSize and inBytes.Get32( end - kZip64LocatorSize ) == kZip64Locator )
        throw Fault{ "it has the form for sizes above 4 GiB" };
    if ( begin + size != end )
        throw Fault{ "its directory isn't where it says" };
    if ( count > ZipLayout::kMostEntries )
        throw Fault{ fmt::format( "it has {} entries, and the limit is {}", count, ZipLayout::kMostEntries ) };
    return { begin, end, count };
}

// Names

bool HasControl( TextView inName )
{
    return std::ranges::any_of(
        inName, []( char16_t unit ) { return unit < 0x20 or ( unit >= 0x7F and unit < 0xA0 ); } );
}

std::vector<std::string> PartsOf( const std::string& inName )
{
    std::vector<std::string> parts;
    for ( std::size_t begin = 0; begin <= inName.size(); )
    {
        const std::size_t end = std::min( inName.find( '/', begin ), inName.size() );
        parts.push_back( inName.substr( begin, end - begin ) );
        begin = end + 1;
    }
    return parts;
}

constexpr bool IsLetter( char inUnit )
{
    return ( inUnit >= 'a' and inUnit <= 'z' ) or ( inUnit >= 'A' and inUnit <= 'Z' );
}

void CheckName( const std::string& inName )
{
    const auto text = TextFromStrictUTF8( inName );
    if ( not text or HasControl( *text ) or inName.find( '\\' ) != std::string::npos )
        throw Fault{ "a name in it holds what no file name should" };
    if ( inName.starts_with( '/' ) or ( inName.size() > 1 and IsLetter( inName[0] ) and inName[1] == ':' ) )
        throw Fault{ "a path in it is absolute" };
    const std::vector<std::string> parts = PartsOf( inName );
    if ( parts.size() > ZipLayout::kMostDepth )
        throw Fault{ fmt::format( "its folders are nested deeper than {}", ZipLayout::kMostDepth ) };
    for ( const std::string& part : parts )
    {
        if ( part.empty() or part == "." or part == ".." )
            throw Fault{ "a path in it leads elsewhere" };
        if ( part.size() > ZipLayout::kMostNameBytes )
            throw Fault{ fmt::format( "a name in it is longer than {} bytes", ZipLayout::kMostNameBytes ) };
    }
}

// Names that some file system takes for the same have the same key.
std::string KeyOf( const std::string& inName )
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const folding = icu::Normalizer2::getNFKCCasefoldInstance( status );
    if ( U_FAILURE( status ) )
        throw Fault{ "its names can't be compared" };
    std::string key;
    folding->normalize( icu::UnicodeString::fromUTF8( inName ), status ).toUTF8String( key );
    if ( U_FAILURE( status ) )
        throw Fault{ "its names can't be compared" };
    return key;
}

// Every path once, in one spelling, and none both a file and a folder.
class Names
{
public:
    void Add( const ZipEntry& inEntry )
    {
        for ( std::size_t slash = inEntry.mName.find( '/' ); slash != std::string::npos;
              slash = inEntry.mName.find( '/', slash + 1 ) )
            Note( inEntry.mName.substr( 0, slash ), true, false );
        Note( inEntry.mName, inEntry.mIsFolder, true );
    }

private:
    struct Known
    {
        std::string mName;
        bool mIsFolder, mHasEntry;
    };

    void Note( const std::string& inName, bool inIsFolder, bool inHasEntry )
    {
        const auto [known, isNew] = mNames.try_emplace( KeyOf( inName ), Known{ inName, inIsFolder, inHasEntry } );
        if ( isNew )
            return;
        const bool isTwice = inHasEntry and known->second.mHasEntry;
        if ( isTwice or known->second.mName != inName or known->second.mIsFolder != inIsFolder )
            throw Fault{ "two of its names are the same" };
        known->second.mHasEntry |= inHasEntry;
    }

    std::map<std::string, Known> mNames;
};

// Entries

void CheckForm( std::uint16_t inFlags, std::uint16_t inMethod )
{
    if ( inFlags & ( kEncrypted | kStronglyEncrypted | kMasked ) )
        throw Fault{ "it is encrypted" };
    if ( ( inFlags & kPatch ) or ( inMethod != kStored and inMethod != kDeflated ) )
        throw Fault{ "it is compressed in a way that isn't known" };
}

void TakeMode( std::uint32_t inMode, ZipEntry& ioEntry )
{
    const std::uint32_t type = inMode & S_IFMT;
    if ( type != 0 and type != S_IFREG and type != S_IFDIR )
        throw Fault{ "it holds a link or a device" };
    if ( inMode & ( S_ISUID | S_ISGID ) )
        throw Fault{ "a file in it would run as somebody else" };
    if ( type != 0 and ( type == S_IFDIR ) != ioEntry.mIsFolder )
        throw Fault{ "an entry of it is both a file and a folder" };
    ioEntry.mIsExecutable = not ioEntry.mIsFolder and ( inMode & S_IXUSR );
}

void CheckSizes( const ZipEntry& inEntry, std::uint16_t inMethod )
{
    if ( inEntry.mPackedSize == 0xFFFFFFFF or inEntry.mSize == 0xFFFFFFFF or inEntry.mOffset == 0xFFFFFFFF )
        throw Fault{ "it has the form for sizes above 4 GiB" };
    if ( ( inMethod == kStored and inEntry.mPackedSize != inEntry.mSize ) or
        ( inEntry.mIsFolder and inEntry.mSize > 0 ) )
        throw Fault{ "its sizes disagree" };
    if ( inEntry.mSize > ZipLayout::kSmallBytes and inEntry.mSize / ZipLayout::kMostRatio > inEntry.mPackedSize )
        throw Fault{ "an entry of it is packed too well to be meant seriously" };
}

// The sizes once more, behind the data; with or without a mark before them.
std::uint64_t EndOfDescriptor( const Bytes& inBytes, const ZipEntry& inEntry, std::uint64_t inAt )
{
    if ( inBytes.Get32( inAt ) == kDescriptor and inBytes.Get32( inAt + 4 ) == inEntry.mCRC )
        inAt += 4;
    if ( inBytes.Get32( inAt ) != inEntry.mCRC or inBytes.Get32( inAt + 4 ) != inEntry.mPackedSize or
        inBytes.Get32( inAt + 8 ) != inEntry.mSize )
        throw Fault{ "its sizes disagree" };
    return inAt + 12;
}

void CheckLocalHeader(
    const Bytes& inBytes, const std::string& inName, std::uint16_t inFlags, std::uint16_t inMethod, ZipEntry& ioEntry )
{
    const std::uint64_t at = ioEntry.mOffset;
    if ( inBytes.Get32( at ) != kLocalHeader )
        throw Fault{ "an entry isn't where its directory says" };
    const std::size_t nameSize = inBytes.Get16( at + 26 ), extraSize = inBytes.Get16( at + 28 );
    if ( inBytes.Get16( at + 6 ) != inFlags or inBytes.Get16( at + 8 ) != inMethod or
        inBytes.GetString( at + kLocalSize, nameSize ) != inName )
        throw Fault{ "an entry and its directory disagree" };
    const bool sizesFollow = inFlags & kSizesFollow;
    const auto agrees = [&]( std::uint64_t place, std::uint64_t value ) {
        const std::uint32_t here = inBytes.Get32( at + place );
        return here == value or ( sizesFollow and here == 0 );
    };
    if ( not agrees( 14, ioEntry.mCRC ) or not agrees( 18, ioEntry.mPackedSize ) or not agrees( 22, ioEntry.mSize ) )
        throw Fault{ "its sizes disagree" };
    ioEntry.mEnd = at + kLocalSize + nameSize + extraSize + ioEntry.mPackedSize;
    if ( sizesFollow )
        ioEntry.mEnd = EndOfDescriptor( inBytes, ioEntry, ioEntry.mEnd );
}

// The entry at the place, which moves behind it.
ZipEntry ReadEntry( const Bytes& inBytes, std::uint64_t& ioAt )
{
    const std::uint64_t at = ioAt;
    if ( inBytes.Get32( at ) != kDirectoryEntry )
        throw Fault{ "its directory is damaged" };
    const std::uint16_t flags = inBytes.Get16( at + 8 ), method = inBytes.Get16( at + 10 );
    CheckForm( flags, method );
    ZipEntry entry;
    entry.mCRC = inBytes.Get32( at + 16 );
    entry.mPackedSize = inBytes.Get32( at + 20 );
    entry.mSize = inBytes.Get32( at + 24 );
    entry.mOffset = inBytes.Get32( at + 42 );
    if ( inBytes.Get16( at + 34 ) != 0 )
        throw Fault{ "it is spread over several disks" };
    const std::size_t nameSize = inBytes.Get16( at + 28 );
    const std::string name = inBytes.GetString( at + kDirectoryEntrySize, nameSize );
    entry.mIsFolder = name.ends_with( '/' );
    entry.mName = entry.mIsFolder ? name.substr( 0, name.size() - 1 ) : name;
    CheckName( entry.mName );
    TakeMode( inBytes.Get32( at + 38 ) >> 16, entry );
    CheckSizes( entry, method );
    CheckLocalHeader( inBytes, name, flags, method, entry );
    ioAt = at + kDirectoryEntrySize + nameSize + inBytes.Get16( at + 30 ) + inBytes.Get16( at + 32 );
    return entry;
}

void CheckTogether( const std::vector<ZipEntry>& inEntries, std::uint64_t inDirectory )
{
    std::uint64_t end = 0, size = 0, packed = 0;
    Names names;
    for ( const ZipEntry& entry : inEntries )
    {
        if ( entry.mOffset < end )
            throw Fault{ "its entries overlap" };
        end = entry.mEnd;
        size += entry.mSize;
        packed += entry.mPackedSize;
        names.Add( entry );
    }
    if ( end > inDirectory )
        throw Fault{ "its entries overlap" };
    if ( size > ZipLayout::kMostBytes )
        throw Fault{ fmt::format( "it holds more than {} MiB", ZipLayout::kMostBytes >> 20 ) };
    if ( size > ZipLayout::kSmallBytes and size / ZipLayout::kMostRatio > packed )
        throw Fault{ "it is packed too well to be meant seriously" };
}
} // namespace

ZipLayout ReadZipLayout( std::span<const std::uint8_t> inBytes )
{
    ZipLayout layout;
    try
    {
        const Bytes bytes( inBytes );
        const Directory directory = FindDirectory( bytes );
        std::uint64_t at = directory.mBegin;
        for ( std::size_t i = 0; i < directory.mCount; ++i )
            layout.mEntries.push_back( ReadEntry( bytes, at ) );
        if ( at != directory.mEnd )
            throw Fault{ "its directory is damaged" };
        std::ranges::sort( layout.mEntries, {}, &ZipEntry::mOffset );
        CheckTogether( layout.mEntries, directory.mBegin );
    }
    catch ( const Fault& fault )
    {
        layout.mEntries.clear();
        layout.mFault = fault.mText;
    }
    return layout;
}
