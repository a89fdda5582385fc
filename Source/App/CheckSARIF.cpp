#include "App/CheckSARIF.h"

#include <fmt/format.h>
#include <initializer_list>
#include <utility>

namespace
{
constexpr const char* kSchema =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";

using Field = std::pair<XKey, __SafeCFPropertyList>;

__SafeCFPropertyList Object( std::initializer_list<Field> inFields )
{
    XMutableDictionary dictionary;
    for ( const auto& [key, value] : inFields )
        dictionary.Set( key, value );
    return dictionary.Seal();
}

__SafeCFPropertyList List( std::initializer_list<__SafeCFPropertyList> inValues )
{
    XMutableArray array;
    for ( const __SafeCFPropertyList& value : inValues )
        array.Append( value );
    return array.Seal();
}

__SafeCFPropertyList String( std::string_view inUTF8 )
{
    return __SafeCFPropertyList::String( TextFromUTF8( inUTF8 ) );
}

__SafeCFPropertyList Message( const __SafeCFPropertyList& inText )
{
    return Object( { { XKey( "text" ), inText } } );
}

__SafeCFPropertyList Rules()
{
    XMutableArray rules;
    for ( const MLoadRuleRow& row : MLoadRules() )
        rules.Append( Object( {
            { XKey( "id" ), String( row.mID ) },
            { XKey( "shortDescription" ), Message( String( row.mExplanation ) ) },
            { XKey( "defaultConfiguration" ), Object( { { XKey( "level" ), String( NameOf( row.mSeverity ) ) } } ) },
        } ) );
    return rules.Seal();
}

// Both the place within the file and the key, for viewers show nothing else beside it.
Text MessageOf( const MFinding& inFinding )
{
    Text text = inFinding.mPath;
    if ( not inFinding.mKey.empty() )
        text += ( text.empty() ? u"" : u" · " ) + inFinding.mKey;
    return text.empty() ? inFinding.mText : text + u": " + inFinding.mText;
}

__SafeCFPropertyList LogicalLocation( const Text& inPath )
{
    constexpr TextView kBetween = u" › ";
    const std::size_t last = inPath.rfind( kBetween );
    const Text name = last == Text::npos ? inPath : inPath.substr( last + kBetween.size() );
    return Object( { { XKey( "name" ), __SafeCFPropertyList::String( name ) },
        { XKey( "fullyQualifiedName" ), __SafeCFPropertyList::String( inPath ) },
        { XKey( "kind" ), String( "element" ) } } );
}

__SafeCFPropertyList PhysicalLocation( const std::string& inPath )
{
    return Object(
        { { XKey( "artifactLocation" ), Object( { { XKey( "uri" ), String( URIReferenceOf( inPath ) ) } } ) } } );
}
} // namespace

std::string URIReferenceOf( std::string_view inPath )
{
    // Two slashes at the start would begin the name of a host.
    while ( inPath.starts_with( "//" ) )
        inPath.remove_prefix( 1 );
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri;
    for ( const char byte : inPath )
    {
        if ( kPlain.find( byte ) != std::string_view::npos )
            uri += byte;
        else
            uri += fmt::format( "%{:02X}", static_cast<unsigned char>( byte ) );
    }
    return uri;
}

void CheckSARIF::AddFindings( const std::string& inPath, const MFileCheck& inCheck )
{
    const __SafeCFPropertyList place = PhysicalLocation( inPath );
    mArtifacts.Append(
        Object( { { XKey( "location" ), Object( { { XKey( "uri" ), String( URIReferenceOf( inPath ) ) } } ) } } ) );
    for ( const MFinding& finding : inCheck.mFindings )
        mResults.Append( Result( finding, place ) );
}

__SafeCFPropertyList CheckSARIF::Result( const MFinding& inFinding, const __SafeCFPropertyList& inPlace ) const
{
    const MLoadRuleRow& row = RowOf( inFinding.mRule );
    XMutableDictionary location;
    location.Set( XKey( "physicalLocation" ), inPlace );
    if ( not inFinding.mPath.empty() )
        location.Set( XKey( "logicalLocations" ), List( { LogicalLocation( inFinding.mPath ) } ) );
    return Object( { { XKey( "ruleId" ), String( row.mID ) },
        { XKey( "ruleIndex" ), __SafeCFPropertyList::Integer( std::int64_t( row.mRule ) ) },
        { XKey( "level" ), String( NameOf( row.mSeverity ) ) },
        { XKey( "message" ), Message( __SafeCFPropertyList::String( MessageOf( inFinding ) ) ) },
        { XKey( "locations" ), List( { location.Seal() } ) } } );
}

void CheckSARIF::AddFailure( const std::string& inPath, const std::string& inSentence )
{
    mHasFailed = true;
    mNotifications.Append(
        Object( { { XKey( "level" ), String( "error" ) }, { XKey( "message" ), Message( String( inSentence ) ) },
            { XKey( "locations" ),
                List( { Object( { { XKey( "physicalLocation" ), PhysicalLocation( inPath ) } } ) } ) } } ) );
}

__SafeCFPropertyList CheckSARIF::Take()
{
    const __SafeCFPropertyList driver = Object( { { XKey( "name" ), String( "korvalen" ) },
        { XKey( "version" ), String( KORVALEN_VERSION ) }, { XKey( "rules" ), Rules() } } );
    const __SafeCFPropertyList invocation =
        Object( { { XKey( "executionSuccessful" ), __SafeCFPropertyList::Boolean( not mHasFailed ) },
            { XKey( "toolExecutionNotifications" ), mNotifications.Seal() } } );
    const __SafeCFPropertyList run = Object( { { XKey( "tool" ), Object( { { XKey( "driver" ), driver } } ) },
        { XKey( "invocations" ), List( { invocation } ) }, { XKey( "artifacts" ), mArtifacts.Seal() },
        { XKey( "columnKind" ), String( "utf16CodeUnits" ) }, { XKey( "results" ), mResults.Seal() } } );
    mHasFailed = false;
    return Object( { { XKey( "$schema" ), String( kSchema ) }, { XKey( "version" ), String( "2.1.0" ) },
        { XKey( "runs" ), List( { run } ) } } );
}
