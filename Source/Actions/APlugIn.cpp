#include "Actions/APlugIn.h"

#include "Actions/HFieldVisitors.h"
#include "Actions/PlugInFolder.h"
#include "Defines/KVVariables.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/StringHelpers.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>

namespace
{
constexpr double kNoTimeOut = 0.01; // seconds; a period up to this declares that there is none

APlugIn::TokenTextGetResult gTokenText = nullptr;

// A value of an information file in a log line.
Text Shown( const __SafeCFPropertyList& inValue )
{
    if ( not inValue )
        return u"(null)";
    if ( const XPlistString* text = inValue.AsString() )
        return text->GetText();
    if ( const XPlistNumber* number = inValue.AsNumber() )
        return kvr_shortestNumber( number->AsReal() );
    return TextFromASCII( NameOf( inValue.GetType() ) );
}

__SafeCFPropertyList ValueOf( const CFContainer<XPlistDictionary>& inDictionary, const XKey& inKey )
{
    return inDictionary ? __SafeCFPropertyList( inDictionary->Find( inKey ) ) : nullptr;
}

XText StringOf( const __SafeCFPropertyList& inValue )
{
    return inValue.AsString() ? XText( CFContainer<XPlistString>::Share( inValue.AsString() ) ) : XText();
}

std::optional<double> NumberOf( const __SafeCFPropertyList& inValue )
{
    return inValue.AsNumber() ? std::optional( inValue.AsNumber()->AsReal() ) : std::nullopt;
}

// A link inside the plug-in's folder could lead out of it.
bool IsLink( const std::filesystem::path& inPath )
{
    XFileStatus facts;
    return XFileCalls::Current().GetLinkFacts( inPath, facts ) == 0 and facts.mKind == XFileStatus::Kind::kLink;
}

std::optional<std::size_t> IndexOf( std::span<const TextView> inNames, TextView inName )
{
    const auto found = std::find( inNames.begin(), inNames.end(), inName );
    return found == inNames.end() ? std::nullopt : std::optional( std::size_t( found - inNames.begin() ) );
}

// Each line end as the one unit that tool tips are broken at.
Text WithReturns( TextView inText )
{
    Text result;
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        if ( inText[i] != u'\n' )
            result += inText[i];
        else if ( i == 0 or inText[i - 1] != u'\r' )
            result += u'\r';
    }
    return result;
}
} // namespace

APlugIn::APlugIn( const XText& inFolderName ) : mFolderName( inFolderName )
{
    mResult.SetKind( GetInformationDefaultDisplayKind() );
    UpdateToDefaults();
}

// Fields

void APlugIn::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "PlugInFolderName", mFolderName );
    DescribeParameters( inVisitor );
    DescribeResult( inVisitor, ActionDisplayKind::kNone );
}

void APlugIn::DescribeParameters( HFieldVisitor& inVisitor )
{
    __SafeCFPropertyList value;
    if ( not inVisitor.IsReading() )
        value = mParameters;
    inVisitor.Value( "PlugInParameters", value, { .mIsSearched = true, .mWrite = XWrite::kAlways } );
    if ( inVisitor.IsReading() )
    {
        const XPlistDictionary* params = value.AsDictionary();
        XThrowIfNot( params );
        mParameters = CFContainer<XPlistDictionary>::Share( params );
    }
}

void APlugIn::DescribeResult( HFieldVisitor& inVisitor, ActionDisplayKind inDefaultKind )
{
    mResult.DescribeFields( inVisitor, inDefaultKind );
    inVisitor.Boolean( "TrimResultsNew", mTrimResults );
    inVisitor.Boolean( "IncludeStdErr", mIncludeStdErr );
}

void APlugIn::InitializeFromDictionary( const XPlistDictionary& inDictionary )
{
    HReadingVisitor visitor( inDictionary );
    visitor.Text( "PlugInFolderName", mFolderName, {} );
    // Asked for once: each question about a plug-in that is gone reads the disk and logs.
    const bool isInstalled = bool( Information() );
    mParameters = XMutableDictionary().Seal();
    DescribeParameters( visitor );
    DescribeResult( visitor, isInstalled ? GetInformationDefaultDisplayKind() : ActionDisplayKind::kNone );
    if ( isInstalled )
        UpdateToDefaults();
}

void APlugIn::UpdateToDefaults()
{
    XMutableDictionary parameters;
    parameters.SetAll( *mParameters );
    const std::size_t count = GetInformationParameterCount();
    for ( std::size_t i = 0; i < count; ++i )
    {
        const XText label = GetInformationParameterEntryLabel( i );
        const XText value = GetInformationParameterEntryDefault( i );
        if ( label.IsNull() or value.IsNull() )
            continue;
        const bool isHidden = GetInformationParameterEntryType( i ) == PlugInParameterType::kHidden;
        if ( isHidden or not mParameters->Find( label ) )
            parameters.Set( label, value );
    }
    mParameters = parameters.Seal();
}

XText APlugIn::GetParameterValue( const XText& inLabel ) const
{
    XAssertText( KVVariables::ValidVariable( inLabel.GetText() ), "KVVariables::ValidVariable( label )" );
    return StringOf( __SafeCFPropertyList( mParameters->Find( inLabel ) ) );
}

void APlugIn::SetParameterValue( const XText& inLabel, const XText& inValue )
{
    const bool isValid = KVVariables::ValidVariable( inLabel.GetText() ).has_value();
    XAssertText( isValid, "KVVariables::ValidVariable( label )" );
    if ( not isValid )
        return;
    XMutableDictionary parameters;
    parameters.SetAll( *mParameters );
    parameters.Set( inLabel, inValue );
    mParameters = parameters.Seal();
}

// Traits

double APlugIn::DefaultTimeOutPeriod() const
{
    // One look, for each at a plug-in that is gone reads the disk and logs.
    const CFContainer<XPlistDictionary> information = Information();
    for ( const XKey& key : { CFSTR( "Timeout" ), CFSTR( "Time Out" ) } )
    {
        if ( const std::optional<double> period = NumberOf( ValueOf( information, key ) ) )
            return *period;
    }
    return RowOf( HActionType::kPlugIn ).mTimeOut;
}

bool APlugIn::HasTimeOut() const
{
    return DefaultTimeOutPeriod() > kNoTimeOut;
}

// Words

void APlugIn::SetTokenText( TokenTextGetResult inGetResult )
{
    gTokenText = inGetResult;
}

Text APlugIn::GetNewActionTitle() const
{
    const XText title = GetInformationTitle();
    if ( not title.IsNull() )
        return title.GetText();
    // The plug-in isn't installed, or doesn't say what it is called.
    if ( mFolderName.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvPlugInUnknownTitleFormat", TextView( mFolderName.GetText() ) );
}

Text APlugIn::InternalGetActionDescriptionString() const
{
    const Text title = GetNewActionTitle();
    if ( not gTokenText )
        return title;
    XMutableDictionary context;
    context.Set( CFSTR( "Parameters" ), mParameters );
    return gTokenText( title, *context.Seal() );
}

std::optional<Text> APlugIn::GetToolTip() const
{
    constexpr struct
    {
        std::string_view mKey;
        const char* mFormat;
    } kLines[] = { { "Author", "Author: %@\r" }, { "URL", "URL: %@\r" }, { "Help", "Help: %@\r" } };
    Text toolTip;
    for ( const auto& [key, format] : kLines )
    {
        const XText value = GetInformationKeyedString( XKey( key ) );
        if ( not value.IsNull() )
            toolTip += kvr_format( format, value );
    }
    if ( toolTip.empty() )
        return {};
    return kvr_stringByTrimmingWhitespace( WithReturns( toolTip ) );
}

// Information

CFContainer<XPlistDictionary> APlugIn::Information() const
{
    return PlugInFolder::InformationForFolderName( mFolderName );
}

XText APlugIn::GetInformationKeyedString( const XKey& inKey ) const
{
    return StringOf( ValueOf( Information(), inKey ) );
}

std::optional<double> APlugIn::GetInformationKeyedNumber( const XKey& inKey ) const
{
    return NumberOf( ValueOf( Information(), inKey ) );
}

std::optional<std::filesystem::path> APlugIn::GetInformationKeyedFile( const XKey& inKey ) const
{
    const __SafeCFPropertyList value = ValueOf( Information(), inKey );
    if ( not value )
        return {};
    const XPlistString* name = value.AsString();
    const auto folder = PlugInFolder::FolderForName( mFolderName );
    if ( folder and name and PlugInFolder::IsSafeFileName( name->GetText() ) and
        not IsLink( *folder / name->GetUTF8() ) )
        return *folder / name->GetUTF8();
    XErrorHandler::PrivateMaybeLogFormat( "display", "Invalid File for key %@ contents %@ for Plug In Action %@",
        inKey.Name(), Shown( value ), mFolderName );
    return {};
}

XText APlugIn::GetInformationName() const
{
    const __SafeCFPropertyList value = ValueOf( Information(), CFSTR( "Name" ) );
    if ( not value.AsString() )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Invalid Name %@ for Plug In Action %@", Shown( value ), mFolderName );
    return StringOf( value );
}

XText APlugIn::GetInformationTitle() const
{
    const CFContainer<XPlistDictionary> information = Information();
    if ( not information )
        return {};
    const XText title = StringOf( ValueOf( information, CFSTR( "Title" ) ) );
    return title.IsNull() ? GetInformationName() : title;
}

std::optional<std::filesystem::path> APlugIn::GetInformationIcon() const
{
    return GetInformationKeyedFile( CFSTR( "Icon" ) );
}

// Parameters of the plug-in

CFContainer<XPlistArray> APlugIn::GetInformationParameters() const
{
    return CFContainer<XPlistArray>::Share( ValueOf( Information(), CFSTR( "Parameters" ) ).AsArray() );
}

std::size_t APlugIn::GetInformationParameterCount() const
{
    const CFContainer<XPlistArray> parameters = GetInformationParameters();
    return parameters ? parameters->GetCount() : 0;
}

CFContainer<XPlistDictionary> APlugIn::GetInformationParameterEntry( std::size_t inIndex ) const
{
    const CFContainer<XPlistArray> parameters = GetInformationParameters();
    if ( not parameters or inIndex >= parameters->GetCount() )
        return nullptr;
    return CFContainer<XPlistDictionary>::Share( parameters->GetValueAt( inIndex ).AsDictionary() );
}

XText APlugIn::GetInformationParameterEntryLabel( std::size_t inIndex ) const
{
    const __SafeCFPropertyList value = ValueOf( GetInformationParameterEntry( inIndex ), CFSTR( "Label" ) );
    const XText label = StringOf( value );
    if ( not label.IsNull() and KVVariables::ValidVariable( label.GetText() ) )
        return label;
    XErrorHandler::PrivateMaybeLogFormat( "always",
        label.IsNull() ? "Invalid Parameter Entry %d Label %@ for Plug In Action %@"
                       : "Invalid Parameter Entry %d Label Format %@ for Plug In Action %@",
        inIndex, Shown( value ), mFolderName );
    return {};
}

PlugInParameterType APlugIn::GetInformationParameterEntryType( std::size_t inIndex ) const
{
    const __SafeCFPropertyList value = ValueOf( GetInformationParameterEntry( inIndex ), CFSTR( "Type" ) );
    const auto type = IndexOf( kInformationParameterTypesNames, StringOf( value ).GetText() );
    if ( type and PlugInParameterType( *type ) != PlugInParameterType::kInvalid )
        return PlugInParameterType( *type );
    XErrorHandler::PrivateMaybeLogFormat(
        "always", "Invalid Parameter Entry %d Type %@ for Plug In Action %@", inIndex, Shown( value ), mFolderName );
    return PlugInParameterType::kInvalid;
}

// Of the keys "Default" and "Menu", which share their log line. A missing one is no fault.
XText APlugIn::EntryText( std::size_t inIndex, const XKey& inKey ) const
{
    const __SafeCFPropertyList value = ValueOf( GetInformationParameterEntry( inIndex ), inKey );
    if ( value and not value.AsString() )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Invalid Parameter Entry %d Default %@ for Plug In Action %@",
            inIndex, Shown( value ), mFolderName );
    return StringOf( value );
}

XText APlugIn::GetInformationParameterEntryDefault( std::size_t inIndex ) const
{
    return EntryText( inIndex, CFSTR( "Default" ) );
}

XText APlugIn::GetInformationParameterEntryMenu( std::size_t inIndex ) const
{
    return EntryText( inIndex, CFSTR( "Menu" ) );
}

// Kinds of result

ActionDisplayKind APlugIn::GetInformationDefaultDisplayKind() const
{
    const XText results = GetInformationKeyedString( CFSTR( "Results" ) );
    if ( results.IsNull() )
        return ActionDisplayKind::kNone;
    if ( results.IsEmpty() )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Invalid Plug In Results %@", results );
    const Text text = results.GetText();
    const auto kind = IndexOf( kActionDisplayKindNames, TextView( text ).substr( 0, text.find( u'|' ) ) );
    return ActionDisplayKind( kind.value_or( 0 ) );
}

bool APlugIn::IsAllowedDisplayKind( ActionDisplayKind inKind ) const
{
    const XText results = GetInformationKeyedString( CFSTR( "Results" ) );
    if ( results.IsNull() )
        return inKind == ActionDisplayKind::kNone;
    return results.GetText().find( StoredName( inKind ) ) != Text::npos;
}

std::size_t APlugIn::CountAllowedDisplayKind() const
{
    std::size_t count = 0;
    for ( std::size_t i = 0; i < std::size( kActionDisplayKindNames ); ++i )
        count += IsAllowedDisplayKind( ActionDisplayKind( i ) );
    return count;
}

bool APlugIn::ShouldDisplayKind() const
{
    const std::size_t count = CountAllowedDisplayKind();
    return count > 1 or ( count == 1 and not IsAllowedDisplayKind( ActionDisplayKind::kNone ) );
}
