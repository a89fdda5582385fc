// The one way to stand still: for code that polls another process, on a thread that may wait. Tests install a way in
// which waiting turns a clock by hand. Any thread; never the main one for longer than a user doesn't notice.
#pragma once

class XSleep
{
public:
    virtual ~XSleep() = default;
    virtual void Sleep( double inSeconds ) = 0; ///< by any thread, by several at once

    /// Waits for so many seconds in the way in use: really, unless another was installed.
    static void For( double inSeconds );

    /// Installs a way for as long as this object lives. Main thread, while nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( XSleep& inSleep );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        XSleep* mPrevious;
    };
};
