// The loopback stub: a remote processor in this process, which tells what it did.
#ifndef ONDRIX_EXAMPLES_LOOPBACK_H
#define ONDRIX_EXAMPLES_LOOPBACK_H

namespace demo
{

// Calls that the loopback stub has run to their end; -1 when it is not what the library loaded.
long loopbackCalls();

} // namespace demo

#endif
