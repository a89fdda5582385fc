// The actions that ask the web: a search that the user types, and a resource that is fetched.
#pragma once

#include "Actions/ActionResult.h"
#include "Actions/HBaseAction.h"

/// Asks the user what to search for, and opens the URL that the answer makes.
class ASearch final : public HActionOf<ASearch, HActionType::kSearch>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTitle = SharedText<u"">();
    XText mURL = SharedText<u"">();
    XText mDefault = SharedText<u"">();
};

/// How much of the parameter the engine processes before it becomes part of the request.
enum class ParameterProcessing { kNone, kSome, kAll };
inline constexpr TextView kParameterProcessingNames[] = { u"None", u"Some", u"All" };
static_assert( std::size( kParameterProcessingNames ) == std::size_t( ParameterProcessing::kAll ) + 1 );
constexpr auto NamesOf( ParameterProcessing )
{
    return std::span( kParameterProcessingNames );
}

class AGetURL final : public HActionOf<AGetURL, HActionType::kGetURL>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mRemoteTrigger = SharedText<u"">();
    XText mURL = SharedText<u"">();
    XText mParameter = SharedText<u"">();
    ParameterProcessing mParameterProcessing = ParameterProcessing::kNone;
    ActionResult mResult;
    bool mTrimResults = true;
};
