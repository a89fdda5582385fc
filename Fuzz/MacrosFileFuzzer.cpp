// Any property list with groups in it loads, and what is saved then is settled: it survives the binary form, and
// loading and saving it again changes nothing but the date and the UUID of the save.
#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadCheck.h"
#include "Macros/MMacroDomain.h"
#include "XCAF/XErrorHandlerTesting.h"
#include "XCAF/XException.h"

#include <cstdio>
#include <cstdlib>

namespace
{
void Require( bool inHolds, const char* inWhat )
{
    if ( inHolds )
        return;
    std::fprintf( stderr, "%s\n", inWhat );
    std::abort();
}

__SafeCFPropertyList WithoutStamps( const __SafeCFPropertyList& inFile )
{
    XMutableDictionary file;
    file.SetAll( *inFile.AsDictionary() );
    file.Set( CFSTR( "PreferenceSavedDate" ), nullptr );
    file.Set( CFSTR( "PreferenceSaveUUID" ), nullptr );
    return file.Seal();
}

__SafeCFPropertyList SavedFrom( const __SafeCFPropertyList& inFile )
{
    MMacroDomain domain;
    domain.LoadFromPropertyList( inFile );
    return domain.GetPropertyList();
}

// What a save leaves as it is mustn't be called changed.
void RequireQuietCheck( const __SafeCFPropertyList& inSaved )
{
    const MFileCheck check = CheckFile( inSaved );
    for ( const MFinding& finding : check.mFindings )
        std::fprintf( stderr, "%s: %s %s: %s\n", RowOf( finding.mRule ).mID.data(),
            UTF8FromText( finding.mPath ).c_str(), UTF8FromText( finding.mKey ).c_str(),
            UTF8FromText( finding.mText ).c_str() );
    Require( check.mFindings.empty(), "a saved file has findings" );
}
} // namespace

extern "C" int LLVMFuzzerInitialize( int*, char*** )
{
    XErrorHandler::SetSinkForTesting( []( bool, TextView ) {} );
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput( const std::uint8_t* inBytes, std::size_t inSize )
{
    const __SafeCFPropertyList file = ReadPropertyList( { inBytes, inSize } ).mValue;
    if ( FileKindOf( file ) != MFileKind::kMacrosFile )
        return 0;
    const __SafeCFPropertyList saved = SavedFrom( file );
    const XBytes written = WriteBinaryPropertyList( saved );
    const XPlistReadResult read = ReadBinaryPropertyList( written.Span() );
    Require( not read.mFault, "what was saved can't be read" );
    Require( read.mValue == saved, "what was saved reads as another value" );
    Require( WithoutStamps( SavedFrom( read.mValue ) ) == WithoutStamps( saved ), "a second save differs" );
    RequireQuietCheck( read.mValue );
    return 0;
}
