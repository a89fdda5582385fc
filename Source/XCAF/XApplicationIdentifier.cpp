#include "XCAF/XApplicationIdentifier.h"

#include "CFMethods/PropertyListCodec.h"
#include "Platform/Applications.h"
#include "Platform/Platform.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>

namespace
{
// The player was renamed; macros of either age mean the one that is there now.
XText NameOfToday( const XText& inName )
{
    return inName == TextView( u"iTunes" ) ? XText( u"Music" ) : inName;
}

XText BundleIdentifierOfToday( const XText& inIdentifier )
{
    return inIdentifier == TextView( u"com.apple.iTunes" ) ? XText( u"com.apple.Music" ) : inIdentifier;
}

ApplicationIdentifierMatchType MatchFromName( const XText& inName )
{
    for ( std::size_t i = 0; i < std::size( kApplicationIdentifierMatchTypeNames ); ++i )
    {
        if ( inName == kApplicationIdentifierMatchTypeNames[i] )
            return ApplicationIdentifierMatchType( i );
    }
    return ApplicationIdentifierMatchType::kDefault;
}

int Sign( int inOrder )
{
    return inOrder < 0 ? -1 : inOrder > 0;
}

int CompareTexts( const XText& a, const XText& b )
{
    if ( a.IsEmpty() or b.IsEmpty() )
        return int( b.IsEmpty() ) - int( a.IsEmpty() );
    return Sign( a.GetString()->Compare( *b.GetString() ) );
}

int CompareValues( const __SafeCFPropertyList& a, const __SafeCFPropertyList& b )
{
    if ( a.Equals( b ) )
        return 0;
    if ( not a or not b )
        return a ? 1 : -1;
    // Equal values have equal bytes, so the bytes order values of all types.
    return Sign( WriteBinaryPropertyList( a ).View().compare( WriteBinaryPropertyList( b ).View() ) );
}
} // namespace

XApplicationIdentifier::XApplicationIdentifier(
    XText inName, XText inBundleIdentifier, __SafeCFPropertyList inFile, ApplicationIdentifierMatchType inMatch )
    : mName( std::move( inName ) ),
      mBundleIdentifier( std::move( inBundleIdentifier ) ),
      mFile( std::move( inFile ) ),
      mMatch( inMatch )
{}

XApplicationIdentifier XApplicationIdentifier::CreateFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );

    XApplicationIdentifier result;
    XText match;
    (void)dictionary->Get( CFSTR( "Name" ), result.mName );
    (void)dictionary->Get( CFSTR( "BundleIdentifier" ), result.mBundleIdentifier );
    (void)dictionary->Get( CFSTR( "NewFile" ), result.mFile );
    (void)dictionary->Get( CFSTR( "Match" ), match );
    result.mName = NameOfToday( result.mName );
    result.mBundleIdentifier = BundleIdentifierOfToday( result.mBundleIdentifier );
    result.mMatch = MatchFromName( match );

    const XApplications& applications = Platform::Current().Applications();
    if ( result.mFile and not applications.ResolveApplicationAlias( result.mFile ) )
    {
        // The reference may be another computer's or platform's, and mean something there: it goes
        // only for one that means something here.
        if ( auto found =
                 applications.RefindApplicationAlias( result.mName.GetText(), result.mBundleIdentifier.GetText() ) )
            result.mFile = std::move( found );
    }
    return result;
}

__SafeCFPropertyList XApplicationIdentifier::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    if ( not mName.IsEmpty() )
        dictionary.SetText( CFSTR( "Name" ), mName );
    if ( not mBundleIdentifier.IsEmpty() )
        dictionary.SetText( CFSTR( "BundleIdentifier" ), mBundleIdentifier );
    if ( mFile )
        dictionary.Set( CFSTR( "NewFile" ), mFile );
    if ( mMatch != ApplicationIdentifierMatchType::kDefault )
        dictionary.SetText( CFSTR( "Match" ), kApplicationIdentifierMatchTypeNames[std::size_t( mMatch )] );
    return dictionary.Seal();
}

Text XApplicationIdentifier::GetDisplayName() const
{
    if ( not mName.IsEmpty() )
        return mName.GetText();
    const XApplications& applications = Platform::Current().Applications();
    auto facts = mFile ? applications.ResolveApplicationAlias( mFile ) : std::nullopt;
    if ( not facts and not mBundleIdentifier.IsEmpty() )
        facts = applications.FindApplication( mBundleIdentifier.GetText() );
    return facts and not facts->mName.empty() ? facts->mName : mBundleIdentifier.GetText();
}

bool XApplicationIdentifier::FileDecides() const
{
    return mMatch == ApplicationIdentifierMatchType::kPath or ( mName.IsEmpty() and mBundleIdentifier.IsEmpty() );
}

int XApplicationIdentifier::CompareWithSame( const XApplicationIdentifier& inOther ) const
{
    if ( mMatch != inOther.mMatch )
        return mMatch < inOther.mMatch ? -1 : 1;
    if ( const int order = CompareTexts( mBundleIdentifier, inOther.mBundleIdentifier ) )
        return order;
    if ( const int order = CompareTexts( mName, inOther.mName ) )
        return order;
    return FileDecides() ? CompareValues( mFile, inOther.mFile ) : 0;
}

void XApplicationList::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistArray* apps = inValue.AsArray();
    XThrowIfNot( apps && apps->IsCorrectTypeID() );

    std::vector<XApplicationIdentifier> applications;
    applications.reserve( apps->GetCount() );
    for ( const XPlistNode* node : apps->Nodes() )
    {
        try
        {
            applications.push_back( XApplicationIdentifier::CreateFromPropertyList( __SafeCFPropertyList( node ) ) );
        }
        catch ( const XException& )
        {
            XErrorHandler::PrivateMaybeLogFormat( "always", "XApplicationList::LoadFromPropertyList exception" );
        }
    }
    mApplications = std::move( applications );
}

__SafeCFPropertyList XApplicationList::CopyToPropertyList() const
{
    XMutableArray array;
    array.Reserve( mApplications.size() );
    for ( const auto& application : mApplications )
        array.Append( application.CopyToPropertyList() );
    return array.Seal();
}

std::vector<Text> XApplicationList::GetDisplayNames() const
{
    std::vector<Text> names;
    names.reserve( mApplications.size() );
    for ( const auto& application : mApplications )
        names.push_back( application.GetDisplayName() );
    return names;
}

int XApplicationList::CompareWithSame( const XApplicationList& inOther ) const
{
    const std::size_t shared = std::min( mApplications.size(), inOther.mApplications.size() );
    for ( std::size_t i = 0; i < shared; ++i )
    {
        if ( const int order = mApplications[i].CompareWithSame( inOther.mApplications[i] ) )
            return order;
    }
    return mApplications.size() == inOther.mApplications.size() ? 0
        : mApplications.size() < inOther.mApplications.size()   ? -1
                                                                : 1;
}
