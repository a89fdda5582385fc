// A saved search over all macros. Its strings are alternatives: a macro belongs to it when any of them
// matches. The domain owns smart groups. Main thread.
#pragma once

#include "Macros/MMacroSerializedObject.h"
#include "Utility/Search/StringSearcher.h"

#include <functional>
#include <memory>
#include <vector>

class MMacroSmartGroup : public MMacroSerializedObject
{
public:
    using Searchers = std::vector<StringSearcher>;

    /// Has one empty search string.
    MMacroSmartGroup();
    /// Loads; throws XException when "SearchStrings" is missing.
    explicit MMacroSmartGroup( const __SafeCFPropertyList& inValue );

    [[nodiscard]] Text GetName() const override;
    /// Stored uncleaned.
    void SetName( const XText& inName ) override;
    [[nodiscard]] const XText& GetStoredName() const { return mName; } ///< null for none
    [[nodiscard]] Text GetUnambiguousName() const override;
    /// The latest modification of the macros that match, or 0.
    [[nodiscard]] XAbsoluteTime GetModificationTime() const override;
    [[nodiscard]] XIcon GetXIcon() const override;
    /// Never dimmed.
    [[nodiscard]] XIcon GetXIconWithDisabledBadge() const override { return GetXIcon(); }
    [[nodiscard]] MMacroSmartGroup* GetAsMacroSmartGroup() override { return this; }
    [[nodiscard]] const MMacroSmartGroup* GetAsMacroSmartGroup() const override { return this; }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override;
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const override;
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue ) override;
    [[nodiscard]] Text SerializedObjectKindName() const override;

    [[nodiscard]] const std::vector<XText>& GetSearchStrings() const { return mSearchStrings; }
    void SetSearchStrings( std::vector<XText> inStrings );

    /// One searcher for each search string.
    void GetStringSearchers( Searchers& outSearchers ) const;
    /// Some searcher is one that matches everything.
    [[nodiscard]] static bool MatchesAll( const Searchers& inSearchers );
    /// Some searcher has something to test and matches the macro. Lowers their next-change times.
    [[nodiscard]] static bool MatchesMacro( Searchers& ioSearchers, const MMacro& inMacro );
    /// Every macro of the domain that matches.
    void DoForEveryMacro( const std::function<void( MMacro& )>& inBlock ) const;
    /// The same; lowers the time, in seconds from now, to when the result may change.
    void GetEveryMacro( std::vector<MMacro*>& ioMacros, double& ioNextChange ) const;
    [[nodiscard]] bool IsTimeSensitive() const;

    /// Macros before groups before smart groups, then by name: -1, 0 or 1.
    static int CompareAlphabeticallyEntries(
        const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* inContext = nullptr );

    [[nodiscard]] std::unique_ptr<MMacroSmartGroup> Clone( CloneFor inWhat ) const;

private:
    void DoForEveryMatch( Searchers& ioSearchers, const std::function<void( MMacro& )>& inBlock ) const;

    XText mName;
    std::vector<XText> mSearchStrings;
};
