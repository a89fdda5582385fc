#include "App/ObjectSelection.h"

#include "App/MacrosFile.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/TextCompare.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace
{
using MacroEditing::Objects;

constexpr struct
{
    const char* mOption;
    const char* mWord;
    std::uint8_t mKind;
} kKinds[] = { { "macro", "macro", kSelectMacros }, { "group", "group", kSelectGroups },
    { "smart-group", "smart group", kSelectSmartGroups } };

std::uint8_t KindOf( const MMacroSerializedObject& inObject )
{
    return inObject.GetAsMacro() ? kSelectMacros : inObject.GetAsMacroGroup() ? kSelectGroups : kSelectSmartGroups;
}

/// "macro, group or smart group"
std::string WordsOf( std::uint8_t inKinds )
{
    std::vector<std::string> words;
    for ( const auto& [option, word, kind] : kKinds )
    {
        if ( inKinds & kind )
            words.emplace_back( word );
    }
    const std::string last = words.back();
    words.pop_back();
    return words.empty() ? last : fmt::format( "{} or {}", fmt::join( words, ", " ), last );
}

template<class Block>
void ForEachObject( std::uint8_t inKinds, const Block& inBlock )
{
    const MMacroDomain& domain = *MMacroDomain::Get();
    if ( inKinds & kSelectSmartGroups )
        domain.DoForEveryMacroSmartGroup( inBlock );
    if ( inKinds & kSelectGroups )
        domain.DoForEveryMacroGroup( inBlock );
    if ( inKinds & kSelectMacros )
        domain.DoForEveryMacro( [&inBlock]( MMacroGroup&, MMacro& macro ) { inBlock( macro ); } );
}

// Smart groups, then each group with its macros, by name.
void Sort( Objects& ioObjects )
{
    const auto group = []( const MMacroSerializedObject* object ) -> const MMacroSerializedObject* {
        return object->GetAsMacro() ? object->GetAsMacro()->GetOwningGroup() : object->GetAsMacroGroup();
    };
    const auto compare = []( const MMacroSerializedObject* a, const MMacroSerializedObject* b ) {
        const int order = MMacroSerializedObject::CompareAlphabetically( a, b );
        return order ? order < 0 : a->GetSerialNumber() < b->GetSerialNumber();
    };
    std::sort( ioObjects.begin(), ioObjects.end(), [&]( const auto* a, const auto* b ) {
        const auto *groupA = group( a ), *groupB = group( b );
        if ( groupA != groupB )
            return groupA and groupB ? compare( groupA, groupB ) : not groupA;
        const bool isMacroA = a->GetAsMacro(), isMacroB = b->GetAsMacro();
        return isMacroA == isMacroB ? compare( a, b ) : isMacroB;
    } );
}

Objects Find( const std::string& inNameOrUID, std::uint8_t inKinds )
{
    const XText name = TextFromUTF8( inNameOrUID );
    // A UID is unique, so there is nothing more to look for.
    if ( MMacroSerializedObject* const object = MMacroSerializedObject::FindObjectByUID( name );
         object and ( KindOf( *object ) & inKinds ) )
        return { object };
    Objects found;
    ForEachObject( inKinds, [&]( MMacroSerializedObject& object ) {
        if ( object.NameOrUIDMatches( name ) )
            found.push_back( &object );
    } );
    Sort( found );
    return found;
}

// Names that hold what was asked for, if there are a few.
std::string Suggestion( const std::string& inName, std::uint8_t inKinds )
{
    constexpr std::size_t kMost = 5;
    Objects near;
    const Text part = TextFromUTF8( inName );
    ForEachObject( inKinds, [&]( MMacroSerializedObject& object ) {
        if ( not part.empty() and kvr_caseInsensitiveContainsString( object.GetName(), part ) )
            near.push_back( &object );
    } );
    if ( near.empty() or near.size() > kMost )
        return "“korvalen status” says how many there are, and --query selects by search";
    Sort( near );
    std::vector<std::string> places;
    for ( const auto* object : near )
        places.push_back( "“" + PlaceOf( *object ) + "”" );
    return fmt::format( "did you mean {}?", fmt::join( places, " or " ) );
}

std::string AmbiguousName( const std::string& inName, const Objects& inFound )
{
    constexpr std::size_t kMost = 10;
    std::string choices;
    for ( std::size_t i = 0; i < inFound.size() and i < kMost; ++i )
        choices += fmt::format( "{}{} {} {}", i ? ", " : "", KindWord( *inFound[i] ), PlaceOf( *inFound[i] ),
            inFound[i]->GetUID().GetUTF8() );
    if ( inFound.size() > kMost )
        choices += fmt::format( " and {} more", inFound.size() - kMost );
    return fmt::format( "{} things are called “{}”; name one by its UID: {}", inFound.size(), inName, choices );
}

/// Why a query isn't taken to say what to change.
std::optional<std::string> WhyRefused( const StringSearcher& inSearcher )
{
    const auto terms = inSearcher.GetTerms();
    const bool asksForAll =
        std::ranges::any_of( terms, []( const SearchTerm& term ) { return term.mKind == StringSearchee::Kind::kAll; } );
    if ( inSearcher.Useless() or ( inSearcher.MatchesAll() and not asksForAll ) )
        return "an empty query would select everything; say “all:” if that is meant";
    // Terms that a search has no room for are left out, so that it finds more than was asked for.
    if ( terms.size() == StringSearcher::kMaxTerms )
        return fmt::format( "a query has fewer than {} terms; say it shorter", StringSearcher::kMaxTerms );
    return {};
}

bool Matches( const MMacroSerializedObject& inObject, StringSearcher& ioSearcher )
{
    if ( const MMacro* const macro = inObject.GetAsMacro() )
        return macro->MatchesTextSearch( ioSearcher );
    StringSearchee searchee;
    inObject.AddMatchStrings( searchee );
    return ioSearcher.Matches( searchee );
}
} // namespace

void ObjectSelection::AddOptions( CLI::App& ioCommand, bool inWithNames )
{
    if ( inWithNames )
        ioCommand.add_option( "NAME", mNames, fmt::format( "Names or UIDs; each of one {}", WordsOf( mKinds ) ) )
            ->type_name( "" );
    ioCommand.add_option( "--query", mQuery, "And all that “korvalen search” would find with this" )
        ->type_name( "QUERY" );
    if ( ( mKinds & ( mKinds - 1 ) ) == 0 )
        return;
    std::vector<std::string> kinds;
    for ( const auto& [option, word, kind] : kKinds )
    {
        if ( mKinds & kind )
            kinds.emplace_back( option );
    }
    ioCommand.add_option( "--kind", mKind, fmt::format( "Only of this kind: {}", fmt::join( kinds, ", " ) ) )
        ->type_name( "KIND" )
        ->check( CLI::IsMember( kinds ).description( "" ) );
}

std::uint8_t ObjectSelection::Kinds() const
{
    for ( const auto& [option, word, kind] : kKinds )
    {
        if ( mKind == option )
            return kind;
    }
    return mKinds;
}

bool ObjectSelection::AddMatches( std::uint8_t inKinds, Objects& ioObjects, Output& ioOutput ) const
{
    StringSearcher searcher( TextView( TextFromUTF8( *mQuery ) ) );
    if ( const auto reason = WhyRefused( searcher ) )
    {
        ioOutput.Complain( *reason );
        return false;
    }
    const std::size_t before = ioObjects.size();
    ForEachObject( inKinds, [&]( MMacroSerializedObject& object ) {
        if ( Matches( object, searcher ) )
            ioObjects.push_back( &object );
    } );
    if ( ioObjects.size() == before )
        ioOutput.Complain( fmt::format( "no {} matches “{}”", WordsOf( inKinds ), *mQuery ) );
    return ioObjects.size() > before;
}

std::optional<Objects> ObjectSelection::Resolve( Output& ioOutput ) const
{
    const std::uint8_t kinds = Kinds();
    Objects objects;
    bool isGood = true;
    for ( const std::string& name : mNames )
    {
        if ( MMacroSerializedObject* const object = ResolveObject( name, kinds, ioOutput ) )
            objects.push_back( object );
        else
            isGood = false;
    }
    if ( mQuery and not AddMatches( kinds, objects, ioOutput ) )
        isGood = false;
    if ( not isGood )
        return {};
    Sort( objects );
    objects.erase( std::unique( objects.begin(), objects.end() ), objects.end() );
    return objects;
}

MMacroSerializedObject* ResolveObject( const std::string& inNameOrUID, std::uint8_t inKinds, Output& ioOutput )
{
    const Objects found = Find( inNameOrUID, inKinds );
    if ( found.size() == 1 )
        return found.front();
    ioOutput.Complain( found.empty() ? fmt::format( "there is no {} called “{}”; {}", WordsOf( inKinds ), inNameOrUID,
                                           Suggestion( inNameOrUID, inKinds ) )
                                     : AmbiguousName( inNameOrUID, found ) );
    return nullptr;
}

const char* KindWord( const MMacroSerializedObject& inObject )
{
    for ( const auto& [option, word, kind] : kKinds )
    {
        if ( kind == KindOf( inObject ) )
            return word;
    }
    return "";
}

XMutableDictionary FactsOf( const MMacroSerializedObject& inObject )
{
    XMutableDictionary facts;
    facts.SetText( CFSTR( "kind" ), inObject.SerializedObjectKindName() );
    facts.SetText( CFSTR( "name" ), inObject.GetName() );
    facts.SetText( CFSTR( "uid" ), inObject.GetUID() );
    facts.SetBoolean( CFSTR( "active" ), inObject.IsActive() );
    const MMacro* const macro = inObject.GetAsMacro();
    if ( macro and macro->GetOwningGroup() )
        facts.SetText( CFSTR( "group" ), macro->GetOwningGroup()->GetName() );
    return facts;
}
