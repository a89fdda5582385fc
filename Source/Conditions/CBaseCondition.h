// One test that the engine evaluates, such as whether a variable contains a text. This program creates, edits,
// stores, describes and searches conditions. A concrete one derives from CConditionOf and states its fields in
// DescribeFields; what is known of its type beside them is a row of the table in CBaseCondition.cpp. A condition is
// owned by exactly one list, or by the caller that received it. Main thread.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Conditions/ConditionType.h"
#include "XCAF/XIcon.h"

#include <filesystem>
#include <memory>

class StringSearchee;

class CBaseCondition
{
public:
    // What a type says. The defaults go by the described fields and by the type's row and texts.

    /// The type's own keys.
    virtual void SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const;
    /// Fills a fresh condition. Throws XException, quoting the read, when a required key is missing.
    virtual void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary );
    /// Orders two conditions of one type, by the first field that differs: negative, 0 or positive.
    [[nodiscard]] virtual int CompareWithSame( const CBaseCondition& inOther ) const;
    virtual ~CBaseCondition() = default;
    [[nodiscard]] virtual std::unique_ptr<CBaseCondition> Clone() const = 0;
    [[nodiscard]] virtual ConditionType GetConditionType() const = 0;
    /// Refreshes what refers to other objects, such as a named clipboard.
    virtual void UpdateToDefaultValues( bool ) {}
    /// The action that the condition decides was pasted or added: references follow the mapping of the insertion.
    virtual void UpdateForPasteOrAdd() {}
    /// What the editor of the condition is headed with: what the type tests.
    [[nodiscard]] virtual Text GetConditionEditorDescription() const;
    [[nodiscard]] virtual Text GetConditionTypeDescription() const;
    /// By what menus sort the types.
    [[nodiscard]] virtual Text GetConditionTypeSortDescription() const;
    /// The condition in one line, with its values.
    [[nodiscard]] virtual Text GetDescription() const = 0;
    [[nodiscard]] virtual XIcon GetXIcon() const;
    /// An image that the condition holds; none for most.
    [[nodiscard]] virtual XImage GetDescriptionExtraImage() const;
    /// The type's description, the condition's, and the values that the latter leaves out or cuts off.
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// The name of the type's page in the help.
    [[nodiscard]] virtual Text WikiName() const;
    /// Each field once, with its key.
    virtual void DescribeFields( HFieldVisitor& inVisitor ) = 0;

    // Making

    /// A new condition with default values; null for a number that is no type.
    [[nodiscard]] static std::unique_ptr<CBaseCondition> Create( ConditionType inType );
    /// One read from a dictionary; null for a number that is no type. Throws as LoadSubclassFromDictionary.
    [[nodiscard]] static std::unique_ptr<CBaseCondition> Create(
        ConditionType inType, const XPlistDictionary& inDictionary );
    /// Throws XException for a value that is no dictionary, an unknown type or a missing required key.
    [[nodiscard]] static std::unique_ptr<CBaseCondition> CreateFromPropertyList( const __SafeCFPropertyList& inValue );

    /// "ConditionType" and the type's own keys.
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList() const;
    /// By type, -1 or 1, then by CompareWithSame.
    [[nodiscard]] int CompareWith( const CBaseCondition& inOther ) const;

    /// The catalogue of conditions for those who write the help: "Conditions.txt" in the folder, in the form that
    /// Actions/WikiHelpData.h tells. False when it can't be written.
    static bool WriteWikiHelpData( const std::filesystem::path& inFolder );

protected:
    CBaseCondition() = default;
    CBaseCondition( const CBaseCondition& ) = default;
    CBaseCondition& operator=( const CBaseCondition& ) = default;
};

/// What a concrete class gets for naming itself and its type.
template<class Condition, ConditionType kType>
class CConditionOf : public CBaseCondition
{
public:
    [[nodiscard]] ConditionType GetConditionType() const override { return kType; }
    [[nodiscard]] std::unique_ptr<CBaseCondition> Clone() const override
    {
        return std::make_unique<Condition>( static_cast<const Condition&>( *this ) );
    }
};
