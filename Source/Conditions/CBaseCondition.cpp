#include "Conditions/CBaseCondition.h"

#include "Actions/DescriptionText.h"
#include "Actions/HFieldVisitors.h"
#include "Actions/WikiHelpData.h"
#include "Conditions/ApplicationConditions.h"
#include "Conditions/DeviceConditions.h"
#include "Conditions/InputConditions.h"
#include "Conditions/MacroConditions.h"
#include "Conditions/ScreenConditions.h"
#include "Conditions/ScriptCondition.h"
#include "Conditions/TextConditions.h"
#include "Defines/KVIconRegistry.h"
#include "Macros/StoredNames.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XException.h"

// To add a type of condition: an enumerator and its key in ConditionType.h, a row here in its place, a class with its
// fields, its texts, and its lines in Tests/Conditions/ConditionCatalogue.txt.

namespace
{
template<class Condition>
std::unique_ptr<CBaseCondition> Make()
{
    return std::make_unique<Condition>();
}

struct ConditionTypeRow
{
    ConditionType mType;
    TextView mIconName; // a built-in icon
    std::unique_ptr<CBaseCondition> ( *mMake )();
};

constexpr ConditionTypeRow kConditionTypes[] = {
    { ConditionType::kApplication, u"Application", Make<CApplicationCondition> },
    { ConditionType::kFrontWindow, u"Window", Make<CFrontWindowCondition> },
    { ConditionType::kButton, u"Window", Make<CButtonCondition> },
    { ConditionType::kMenu, u"Window", Make<CMenuCondition> },
    { ConditionType::kModifiers, u"Keyboard", Make<CModifiersCondition> },
    { ConditionType::kKey, u"Keyboard", Make<CKeyCondition> },
    { ConditionType::kTypedString, u"Keyboard", Make<CTypedStringCondition> },
    { ConditionType::kDisk, u"Condition", Make<CDiskCondition> },
    { ConditionType::kPath, u"File", Make<CPathCondition> },
    { ConditionType::kClipboard, u"Clipboard", Make<CClipboardCondition> },
    { ConditionType::kVariable, u"Variable", Make<CVariableCondition> },
    { ConditionType::kText, u"PlainText", Make<CTextCondition> },
    { ConditionType::kCalculation, u"Condition", Make<CCalculationCondition> },
    { ConditionType::kMacro, u"Macro", Make<CMacroCondition> },
    { ConditionType::kEnvironmentVariable, u"Variable", Make<CEnvironmentVariableCondition> },
    { ConditionType::kActionResult, u"Action", Make<CActionResultCondition> },
    { ConditionType::kScreenImage, u"Screen", Make<CScreenImageCondition> },
    { ConditionType::kPixel, u"Screen", Make<CPixelCondition> },
    { ConditionType::kLocation, u"Condition", Make<CLocationCondition> },
    { ConditionType::kUSBDevice, u"Condition", Make<CUSBDeviceCondition> },
    { ConditionType::kWirelessNetwork, u"Condition", Make<CWirelessNetworkCondition> },
    { ConditionType::kScript, u"PlainText", Make<CScriptCondition> },
    { ConditionType::kOCR, u"Screen", Make<COCRCondition> },
    { ConditionType::kAnyWindow, u"Window", Make<CAnyWindowCondition> },
    { ConditionType::kMouseButton, u"Condition", Make<CMouseButtonCondition> },
};
static_assert( std::size( kConditionTypes ) == std::size( kConditionTypeNames ) );
static_assert(
    [] {
        for ( std::size_t i = 0; i < std::size( kConditionTypes ); ++i )
        {
            if ( std::size_t( kConditionTypes[i].mType ) != i )
                return false;
        }
        return true;
    }(),
    "one row for each ConditionType, in its order" );

const ConditionTypeRow* RowOf( ConditionType inType )
{
    return std::size_t( inType ) < std::size( kConditionTypes ) ? &kConditionTypes[std::size_t( inType )] : nullptr;
}
} // namespace

// Making

std::unique_ptr<CBaseCondition> CBaseCondition::Create( ConditionType inType )
{
    const ConditionTypeRow* row = RowOf( inType );
    return row ? row->mMake() : nullptr;
}

std::unique_ptr<CBaseCondition> CBaseCondition::Create( ConditionType inType, const XPlistDictionary& inDictionary )
{
    auto condition = Create( inType );
    if ( condition )
        condition->LoadSubclassFromDictionary( inDictionary );
    return condition;
}

std::unique_ptr<CBaseCondition> CBaseCondition::CreateFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    XText key;
    static_cast<void>( dictionary->Get( CFSTR( "ConditionType" ), key ) );
    const std::optional<std::size_t> good = IndexOfStoredName( key, kConditionTypeNames );
    XThrowIfNot( good );
    return Create( ConditionType( *good ), *dictionary );
}

CFContainer<XPlistDictionary> CBaseCondition::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "ConditionType" ), StoredName( GetConditionType() ) );
    SaveSubclassToDictionary( dictionary );
    return dictionary.Seal();
}

int CBaseCondition::CompareWith( const CBaseCondition& inOther ) const
{
    const ConditionType type = GetConditionType(), otherType = inOther.GetConditionType();
    if ( type != otherType )
        return type < otherType ? -1 : 1;
    return CompareWithSame( inOther );
}

// By the described fields

void CBaseCondition::SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const
{
    HSavingVisitor visitor( ioDictionary );
    const_cast<CBaseCondition*>( this )->DescribeFields( visitor ); // a saving visitor writes to no member
}

void CBaseCondition::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    HReadingVisitor visitor( inDictionary );
    DescribeFields( visitor );
}

int CBaseCondition::CompareWithSame( const CBaseCondition& inOther ) const
{
    return HComparingVisitor::Compare( *this, inOther );
}

void CBaseCondition::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetConditionTypeDescription() );
    ioSearchee.Add( GetDescription() );
    HCollectingVisitor visitor( ioSearchee );
    const_cast<CBaseCondition*>( this )->DescribeFields( visitor ); // nor does this one
}

// By the type

Text CBaseCondition::GetConditionEditorDescription() const
{
    return kvr_localized( kvr_format( "kvCondition%@EditorTitle", StoredName( GetConditionType() ) ) );
}

Text CBaseCondition::GetConditionTypeDescription() const
{
    return kvr_localized( kvr_format( "kvCondition%@Title", StoredName( GetConditionType() ) ) );
}

Text CBaseCondition::GetConditionTypeSortDescription() const
{
    return GetConditionTypeDescription();
}

Text CBaseCondition::WikiName() const
{
    return kvr_wikiName( GetConditionTypeDescription() );
}

XIcon CBaseCondition::GetXIcon() const
{
    const ConditionTypeRow* row = RowOf( GetConditionType() );
    return XIcon( row ? row->mIconName : TextView(), KVIconRegistry::kCondition );
}

XImage CBaseCondition::GetDescriptionExtraImage() const
{
    return {};
}

bool CBaseCondition::WriteWikiHelpData( const std::filesystem::path& inFolder )
{
    std::vector<WikiHelpLine> lines;
    for ( const ConditionTypeRow& row : kConditionTypes )
    {
        const auto condition = row.mMake();
        lines.push_back( { condition->GetConditionTypeSortDescription(), condition->WikiName(),
            condition->GetConditionTypeDescription(), condition->GetConditionEditorDescription(),
            condition->GetDescription() } );
    }
    return kvr_writeWikiHelpData( inFolder / "Conditions.txt", std::move( lines ) );
}
