#pragma once

/// Ctrl-C, the request to end of other programs, and the end of the terminal: the first one asks
/// for an end in good order, the second one ends the program at once.
namespace Interrupts {

/// Thrown by what waits, out of its command, when the user does not want to wait any more.
struct Cancelled
{
};

/// From now on interrupts are counted, where they ended the program before; may be called again.
void watch();
int count();

/// While @p is holds, count() alone tells of the second one, too: there is a game to be ended
/// first.
void setGuarded(bool is);

} // namespace Interrupts
