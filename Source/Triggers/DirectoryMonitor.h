// The watch of a folder, as triggers store it. Whoever watches registers an interest under its UID.
#pragma once

#include "Actions/HFieldVisitor.h"

namespace DirectoryMonitor
{
/// What to watch for.
enum class Observe { kAdd, kRemove, kBoth };
inline constexpr TextView kObserveNames[] = { u"Add", u"Remove", u"Both" };
static_assert( std::size( kObserveNames ) == std::size_t( Observe::kBoth ) + 1 );
constexpr auto NamesOf( Observe )
{
    return std::span( kObserveNames );
}

/// When to report: at once, not for files that are still partial, or when they are whole.
enum class ObserveWhen { kImmediate, kIgnorePartial, kWaitCompletion };
inline constexpr TextView kObserveWhenNames[] = { u"Immediate", u"IgnorePartial", u"WaitCompletion" };
static_assert( std::size( kObserveWhenNames ) == std::size_t( ObserveWhen::kWaitCompletion ) + 1 );
constexpr auto NamesOf( ObserveWhen )
{
    return std::span( kObserveWhenNames );
}

/// One watch of one folder. A value; main thread.
class Interest
{
public:
    /// Of the downloads folder, with a UID of its own.
    Interest();

    void DescribeFields( HFieldVisitor& inVisitor );
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;
    /// Throws "dictionary && dictionary->IsCorrectTypeID()" if the value isn't a dictionary. Without a UID of today's
    /// form, the interest keeps the one it was made with: that of an earlier version isn't taken over.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );

    [[nodiscard]] const XText& GetPath() const { return mPath; }
    void SetPath( const XText& inPath ) { mPath = inPath; }
    [[nodiscard]] const XText& GetUID() const { return mUID; }
    [[nodiscard]] Observe GetObserve() const { return mObserve; }
    [[nodiscard]] ObserveWhen GetObserveWhen() const { return mObserveWhen; }

private:
    void DescribeUID( HFieldVisitor& inVisitor );

    XText mPath;
    XText mUID;
    Observe mObserve = Observe::kAdd;
    ObserveWhen mObserveWhen = ObserveWhen::kImmediate;
};
} // namespace DirectoryMonitor
