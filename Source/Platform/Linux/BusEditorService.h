// The one editor of a data folder as a name on the session bus with an object that runs verbs. The bus gives a name to
// one process only and takes it back when that ends, however it ends. Private to this folder. Main thread.
//
// The method Run( aay arguments, ay working folder, ay standard input, b output is a terminal, b colours ) answers
// ( i status, ay output, ay errors ). Everything is bytes, for arguments may be file names in any encoding.
#pragma once

#include "Platform/EditorService.h"
#include "Platform/Linux/BusConnection.h"

class BusEditorService final : public XEditorService, private BusConnection::Client
{
public:
    /// The connection must outlive this object.
    BusEditorService( BusConnection& inBus, XWork& inWork );
    ~BusEditorService() override;
    BusEditorService( const BusEditorService& ) = delete;
    BusEditorService& operator=( const BusEditorService& ) = delete;

    [[nodiscard]] Claim ClaimFolder( const std::filesystem::path& inFolder, Handler inHandler ) override;
    void ReleaseFolder() override;
    /// Absent means that nothing was run. When the editor had the request and no reply came, the verb may have been run:
    /// that is a reply with status 1 that says so.
    [[nodiscard]] std::optional<Reply> Ask( const std::filesystem::path& inFolder, const Request& inRequest ) override;

    static constexpr std::size_t kMaxRequestBytes = std::size_t( 64 ) << 20;
    static constexpr std::size_t kMaxReplyBytes = std::size_t( 64 ) << 20;
    static constexpr int kReplySeconds = 600; ///< a large import on a slow disk

private:
    struct Link;
    struct Call;

    void BusCame( GDBusConnection& inBus ) override;
    void BusWent() override;
    bool OfferObject( GDBusConnection& inBus );
    void Heard( GDBusMethodInvocation* inInvocation );
    void Run( const std::shared_ptr<Call>& inCall );
    static void AskWhoCalls( const std::shared_ptr<Call>& inCall );
    static void TakeAnswerWhoCalls( GObject* inBus, GAsyncResult* inResult, gpointer inHolder );

    BusConnection& mConnection;
    XWork& mWork;
    std::filesystem::path mFolder; // empty while nothing is claimed
    Handler mHandler;
    std::shared_ptr<Link> mLink; // while the object is on the bus
};
