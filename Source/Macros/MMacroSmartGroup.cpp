#include "Macros/MMacroSmartGroup.h"

#include "Defines/KVIconRegistry.h"
#include "Macros/MLoadObserver.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/StoredNames.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>

MMacroSmartGroup::MMacroSmartGroup() : mSearchStrings{ u"" } {}

MMacroSmartGroup::MMacroSmartGroup( const __SafeCFPropertyList& inValue ) : MMacroSmartGroup()
{
    MMacroSmartGroup::LoadFromPropertyList( inValue );
}

Text MMacroSmartGroup::GetName() const
{
    return IsEmpty( mName ) ? kvr_localized( u"kvUntitledMacroSmartGroup" ) : mName.GetText();
}

void MMacroSmartGroup::SetName( const XText& inName )
{
    mName = nullptr;
    if ( not IsEmpty( inName ) and not inName.Equals( kvr_localized( u"kvUntitledMacroSmartGroup" ) ) )
        mName = inName;
    DidChangeWords();
}

void MMacroSmartGroup::SetSearchStrings( std::vector<XText> inStrings )
{
    mSearchStrings = std::move( inStrings );
    DidChangeWords();
}

Text MMacroSmartGroup::GetUnambiguousName() const
{
    return kvr_localizedFormat( u"kvMacroSmartGroupUnambiguousName", GetName() );
}

XAbsoluteTime MMacroSmartGroup::GetModificationTime() const
{
    XAbsoluteTime latest = 0;
    DoForEveryMacro( [&latest]( const MMacro& macro ) { latest = std::max( latest, macro.GetModificationTime() ); } );
    return latest;
}

XIcon MMacroSmartGroup::GetXIcon() const
{
    return HasCustomIcon() ? GetCustomIcon() : XIcon( KVIconRegistry::kSmartFolder );
}

void MMacroSmartGroup::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.AddGroup( GetName() );
    for ( const XText& string : mSearchStrings )
        ioSearchee.AddGroup( string );
}

__SafeCFPropertyList MMacroSmartGroup::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    SaveBaseToDictionary( dictionary );
    if ( not mName.IsNull() )
        dictionary.SetText( CFSTR( "Name" ), mName );
    XMutableArray strings;
    for ( const XText& string : mSearchStrings )
        strings.Append( string );
    dictionary.Set( CFSTR( "SearchStrings" ), strings.Seal() );
    return dictionary.Seal();
}

void MMacroSmartGroup::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    XAssert( MMacroInsertion::CurrentlyInserting() );
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    XText name;
    (void)dictionary->Get( CFSTR( "Name" ), name );
    SetName( name );
    LoadBaseFromDictionary( dictionary );

    CFContainer<XPlistArray> strings;
    XThrowIfNot( dictionary->Get( CFSTR("SearchStrings"), strings ) );
    mSearchStrings = TextsOf( *strings );
    DidChangeWords();

    // Early files searched for everything with a string that no longer does. The name is the English one
    // in every language, since that is what those files hold.
    if ( mName.Equals( u"All Macros" ) and not( mSearchStrings.size() == 1 and mSearchStrings[0].Equals( u"all:" ) ) )
    {
        mSearchStrings = { u"all:" };
        if ( MLoadObserver* const observer = MLoadObserver::Current() )
            observer->DidUpgradeValue( *dictionary, CFSTR( "SearchStrings" ), u"“All Macros” searches for “all:”" );
    }
}

Text MMacroSmartGroup::SerializedObjectKindName() const
{
    return kvr_localized( u"SOKSmartGroup" );
}

void MMacroSmartGroup::GetStringSearchers( Searchers& outSearchers ) const
{
    outSearchers.clear();
    for ( const XText& string : mSearchStrings )
        outSearchers.emplace_back( string );
}

bool MMacroSmartGroup::MatchesAll( const Searchers& inSearchers )
{
    return std::ranges::any_of(
        inSearchers, []( const auto& searcher ) { return not searcher.Useless() and searcher.MatchesAll(); } );
}

bool MMacroSmartGroup::MatchesMacro( Searchers& ioSearchers, const MMacro& inMacro )
{
    return std::ranges::any_of( ioSearchers, [&inMacro]( StringSearcher& searcher ) {
        return not searcher.Useless() and inMacro.MatchesTextSearch( searcher );
    } );
}

void MMacroSmartGroup::DoForEveryMatch( Searchers& ioSearchers, const std::function<void( MMacro& )>& inBlock ) const
{
    const MMacroDomain* const domain = MMacroDomain::Get();
    if ( not domain )
        return;
    const bool matchesAll = MatchesAll( ioSearchers );
    domain->DoForEveryMacro( [&]( MMacroGroup&, MMacro& macro ) {
        if ( matchesAll or MatchesMacro( ioSearchers, macro ) )
            inBlock( macro );
    } );
}

void MMacroSmartGroup::DoForEveryMacro( const std::function<void( MMacro& )>& inBlock ) const
{
    Searchers searchers;
    GetStringSearchers( searchers );
    DoForEveryMatch( searchers, inBlock );
}

void MMacroSmartGroup::GetEveryMacro( std::vector<MMacro*>& ioMacros, double& ioNextChange ) const
{
    Searchers searchers;
    GetStringSearchers( searchers );
    DoForEveryMatch( searchers, [&ioMacros]( MMacro& macro ) { ioMacros.push_back( &macro ); } );
    for ( const auto& searcher : searchers )
        ioNextChange = std::min( ioNextChange, searcher.NextChange() );
}

bool MMacroSmartGroup::IsTimeSensitive() const
{
    Searchers searchers;
    GetStringSearchers( searchers );
    return std::ranges::any_of( searchers, []( const auto& searcher ) { return searcher.IsTimeSensitive(); } );
}

int MMacroSmartGroup::CompareAlphabeticallyEntries(
    const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* )
{
    const auto rank = []( const MMacroSerializedObject* object ) {
        return object->GetAsMacro() ? 0 : object->GetAsMacroGroup() ? 1 : 2;
    };
    if ( rank( inA ) != rank( inB ) )
        return rank( inA ) < rank( inB ) ? -1 : 1;
    return localizedStandardCompare( inA->GetName(), inB->GetName() );
}

std::unique_ptr<MMacroSmartGroup> MMacroSmartGroup::Clone( CloneFor what ) const
{
    XAssert( what == CloneFor::kDisplayOnlyReference or MMacroInsertion::CurrentlyInserting() );
    auto clone = std::make_unique<MMacroSmartGroup>();
    CloneToSerializeObject( what, *clone );
    clone->mName = mName;
    clone->mSearchStrings = mSearchStrings;
    return clone;
}
