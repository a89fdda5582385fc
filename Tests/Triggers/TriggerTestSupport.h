// What the tests of triggers share.
#pragma once

#include "Tests/Macros/MacroFixtures.h"
#include "Triggers/TTriggerFactory.h"

inline std::unique_ptr<TBaseTrigger> LoadedTrigger( const __SafeCFPropertyList& inValue )
{
    return TBaseTrigger::CreateFromPropertyList( inValue );
}

/// What saving gives after loading.
inline __SafeCFPropertyList ReloadedTrigger( const __SafeCFPropertyList& inValue )
{
    return LoadedTrigger( inValue )->CopyToPropertyList();
}

/// The message of the exception that reading throws; "" when it throws none.
inline std::string TriggerFailure( const __SafeCFPropertyList& inValue )
{
    try
    {
        (void)LoadedTrigger( inValue );
    }
    catch ( const XException& error )
    {
        return UTF8FromText( error.GetMessage() );
    }
    return {};
}

inline std::unique_ptr<TBaseTrigger> NewTrigger( TriggerType inType )
{
    return TTriggerFactory::GetTriggerFactory( inType ).CreateTrigger();
}

/// Writes down what a load noted: "repaired Key", "older Key", "upgraded Key".
class NotesTaken final : public MLoadObserver
{
public:
    void DidDrop( const XPlistArray&, std::size_t, TextView ) override {}
    void DidReadOlderKey( const XPlistDictionary&, const XKey& inOlder, const XKey& inCurrent ) override
    {
        mNotes.push_back( "older " + std::string( inOlder.Name() ) + " for " + std::string( inCurrent.Name() ) );
    }
    void DidUpgradeType( const XPlistDictionary&, TextView inOlder, TextView inCurrent ) override
    {
        mNotes.push_back( UTF8FromText( inOlder ) + " is " + UTF8FromText( inCurrent ) );
    }
    void DidUpgradeValue( const XPlistDictionary&, const XKey& inKey, TextView ) override
    {
        mNotes.push_back( "upgraded " + std::string( inKey.Name() ) );
    }
    void DidRepair( const XPlistDictionary&, const XKey& inKey, MLoadRule, TextView ) override
    {
        mNotes.push_back( "repaired " + std::string( inKey.Name() ) );
    }
    void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

    std::vector<std::string> mNotes;

private:
    Scope mScope{ *this };
};
