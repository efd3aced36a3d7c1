// What the words in the lists of operations select: a macro for each, that gives its argument or nothing.
#ifndef ODX_FRAME_OPERATIONS_WORDS_H
#define ODX_FRAME_OPERATIONS_WORDS_H

// ODX_IF_<columns>_C(x), ..._V(x), ..._X(x) and ..._A(x) give x where an operation has that column.
#define ODX_IF_none_C(...)
#define ODX_IF_none_V(...)
#define ODX_IF_none_X(...)
#define ODX_IF_none_A(...)
#define ODX_IF_C_C(...) __VA_ARGS__
#define ODX_IF_C_V(...)
#define ODX_IF_C_X(...)
#define ODX_IF_C_A(...)
#define ODX_IF_CV_C(...) __VA_ARGS__
#define ODX_IF_CV_V(...) __VA_ARGS__
#define ODX_IF_CV_X(...)
#define ODX_IF_CV_A(...)
#define ODX_IF_CX_C(...) __VA_ARGS__
#define ODX_IF_CX_V(...)
#define ODX_IF_CX_X(...) __VA_ARGS__
#define ODX_IF_CX_A(...)
#define ODX_IF_CVX_C(...) __VA_ARGS__
#define ODX_IF_CVX_V(...) __VA_ARGS__
#define ODX_IF_CVX_X(...) __VA_ARGS__
#define ODX_IF_CVX_A(...)
#define ODX_IF_CA_C(...) __VA_ARGS__
#define ODX_IF_CA_V(...)
#define ODX_IF_CA_X(...)
#define ODX_IF_CA_A(...) __VA_ARGS__
#define ODX_IF_CVA_C(...) __VA_ARGS__
#define ODX_IF_CVA_V(...) __VA_ARGS__
#define ODX_IF_CVA_X(...)
#define ODX_IF_CVA_A(...) __VA_ARGS__

// ODX_POINTER_<pointer>(x) gives x where there is a remote pointer.
#define ODX_POINTER_none(...)
#define ODX_POINTER_unlisted(...) __VA_ARGS__
#define ODX_POINTER_all(...) __VA_ARGS__
#define ODX_POINTER_L(...) __VA_ARGS__
#define ODX_POINTER_P(...) __VA_ARGS__
#define ODX_POINTER_O(...) __VA_ARGS__
#define ODX_POINTER_LP(...) __VA_ARGS__
#define ODX_POINTER_LO(...) __VA_ARGS__
#define ODX_POINTER_PO(...) __VA_ARGS__
#define ODX_POINTER_LPO(...) __VA_ARGS__

namespace odx
{

// The lists of remote pointers that a pointer belongs to.
enum RemoteList : unsigned {
    remoteList_unlisted = 0,
    remoteList_all = 1,
    remoteList_L = 2 | remoteList_all,
    remoteList_P = 4 | remoteList_all,
    remoteList_O = 8 | remoteList_all,
    remoteList_LP = remoteList_L | remoteList_P,
    remoteList_LO = remoteList_L | remoteList_O,
    remoteList_PO = remoteList_P | remoteList_O,
    remoteList_LPO = remoteList_LP | remoteList_O,
};

} // namespace odx

#endif
