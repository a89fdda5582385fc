// What an object offers to be searched: a list of texts and values, each of a known kind. An
// object fills one by AddMatchStrings, and it is thrown away after the search. One thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <span>
#include <vector>

struct SearchTerm;
struct XSearchableItem;

class StringSearchee
{
public:
    /// What a fact or a search term is about. The order is that of the search languages' kinds.
    enum class Kind : std::uint8_t {
        kText,
        kUID,
        kTrigger,
        kHotKey,
        kName,
        kGroup,
        kApplication,
        kGlobal, ///< active everywhere; its presence is all it says
        kEnabled,
        kCreated,
        kModified,
        kUsed,
        kAll, ///< of terms only
    };

    /// One fact, or one term of a search.
    struct Element
    {
        bool mNegated = false; ///< of terms only
        Kind mKind = Kind::kText;
        Text mText;
        double mTime = 0; ///< of the time kinds: seconds since 2001-01-01 00:00:00 UTC
        double mAge = 0;  ///< of the time kinds: seconds from then until now
    };

    /// A text in whatever form the caller has it.
    class Words
    {
    public:
        Words( TextView inText ) : mText( inText ) {}
        Words( const Text& inText ) : mText( inText ) {}
        Words( Text&& inText ) : mText( std::move( inText ) ) {}
        Words( const char16_t* inText ) : mText( inText ) {}
        Words( const XText& inText ) : mText( inText.GetText() ) {}

    private:
        friend class StringSearchee;
        Text mText;
    };

    // Each adds one fact; an empty text adds none.
    void Add( Words inText ) { AddText( Kind::kText, std::move( inText ) ); }
    void AddUID( Words inUID ) { AddText( Kind::kUID, std::move( inUID ) ); }
    void AddTrigger( Words inTrigger ) { AddText( Kind::kTrigger, std::move( inTrigger ) ); }
    void AddHotKey( Words inHotKey ) { AddText( Kind::kHotKey, std::move( inHotKey ) ); }
    void AddName( Words inName ) { AddText( Kind::kName, std::move( inName ) ); }
    void AddGroup( Words inGroup ) { AddText( Kind::kGroup, std::move( inGroup ) ); }
    void AddApp( Words inApplication ) { AddText( Kind::kApplication, std::move( inApplication ) ); }
    void AddGlobal();
    /// Once for each searchee: a second call is an assertion, and the first stands.
    void AddEnabled( bool inEnabled );

    // Time in seconds since 2001-01-01 00:00:00 UTC, age in seconds.
    void AddCreated( double inTime, double inAge ) { AddTime( Kind::kCreated, inTime, inAge ); }
    void AddModified( double inTime, double inAge ) { AddTime( Kind::kModified, inTime, inAge ); }
    void AddUsed( double inTime, double inAge ) { AddTime( Kind::kUsed, inTime, inAge ); }

    /// Adds what an item of the desktop's search index says: its text content, and its dates with their age now.
    void AddContentCreationModificationText( const XSearchableItem& inItem );
    /// The other way round, for the export: sets the item's text content, one line for each text that people can read,
    /// and its dates of creation, modification and use where they are set (1.0 or more).
    void AddContentCr( XSearchableItem& ioItem ) const;

    [[nodiscard]] std::span<const Element> GetElements() const { return mElements; }
    /// Do all terms hold? They are looked at in order until one doesn't. Lowers the next-change time, in seconds, to
    /// when a time that matched won't any more.
    [[nodiscard]] bool PrivateMatches( std::span<const SearchTerm> inTerms, double& nextChange ) const;

private:
    void AddText( Kind inKind, Words inText );
    void AddTime( Kind inKind, double inTime, double inAge );

    std::vector<Element> mElements;
};
