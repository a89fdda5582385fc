#include "Platform/SearchIndex.h"

namespace
{
class AbsentSearchIndex final : public XSearchIndex
{
public:
    [[nodiscard]] bool isIndexingAvailable() const override { return false; }
    void deleteAllSearchableItems( Completion inCompletion ) override { Refuse( inCompletion ); }
    void deleteSearchableItemsWithIdentifiers( std::span<const Text>, Completion inCompletion ) override
    {
        Refuse( inCompletion );
    }
    void indexSearchableItems( std::vector<XSearchableItem>, Completion inCompletion ) override
    {
        Refuse( inCompletion );
    }

private:
    // Whoever waits for the end of the call has to hear of it, even here.
    static void Refuse( const Completion& inCompletion )
    {
        if ( inCompletion )
            inCompletion( Text( u"This system has no search index" ) );
    }
};
} // namespace

XSearchIndex& XSearchIndex::Absent()
{
    static AbsentSearchIndex gAbsent;
    return gAbsent;
}
