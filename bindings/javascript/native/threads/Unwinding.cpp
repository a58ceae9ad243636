#include <unwind.h>

// Which catch clause takes an exception, for compiled code that asks. Emscripten's library has this too, but
// expects what it is asked in a variable of each thread; Debian's compiler, of another release, puts it into
// one of the whole program. So clauses for a type are for the thread that calls engines: bands catch whatever
// comes, without asking.

/// A question, and the answer.
struct _Unwind_Context {
    _Unwind_Word place;  ///< in the function
    void* clauses;       ///< the function's table of them
    _Unwind_Word clause;
};

extern "C" {

_Unwind_Context __wasm_lpad_context;

_Unwind_Reason_Code __gxx_personality_wasm0(int version, _Unwind_Action actions, uint64_t language,
                                            _Unwind_Exception* exception, _Unwind_Context* context);

_Unwind_Reason_Code _Unwind_CallPersonality(void* thrown) {
    auto* const exception = static_cast<_Unwind_Exception*>(thrown);
    __wasm_lpad_context.clause = 0;
    return __gxx_personality_wasm0(1, _UA_CLEANUP_PHASE, exception->exception_class, exception,
                                   &__wasm_lpad_context);
}

_Unwind_Reason_Code _Unwind_RaiseException(_Unwind_Exception* exception) {
    __builtin_wasm_throw(0, exception);
}

void _Unwind_DeleteException(_Unwind_Exception* exception) {
    if (exception->exception_cleanup) exception->exception_cleanup(_URC_FOREIGN_EXCEPTION_CAUGHT, exception);
}

void _Unwind_SetGR(_Unwind_Context* context, int index, _Unwind_Word value) {
    if (index == 1) context->clause = value;  // the other is the exception
}

/// Places are not set here.
void _Unwind_SetIP(_Unwind_Context*, _Unwind_Word) {}
/// That of the instruction after a call, from 1.
_Unwind_Word _Unwind_GetIP(_Unwind_Context* context) { return context->place + 2; }
void* _Unwind_GetLanguageSpecificData(_Unwind_Context* context) { return context->clauses; }
_Unwind_Ptr _Unwind_GetRegionStart(_Unwind_Context*) { return 0; }
}
