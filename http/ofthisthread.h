#pragma once

#ifdef __MINGW32__
#include <QThreadStorage>
#endif

/// The one object of type @p T that belongs to the calling thread: made when the thread asks first,
/// destroyed after the thread's end. Whoever asks for the same type gets the same object.
///
/// This is what thread_local is for. But MinGW-w64 gives the memory of a thread's objects back
/// before it calls their destructors, which then damage the heap; QThreadStorage does not. (With it
/// the application's thread loses its object together with the application object, and gets a new
/// one when it asks again.) Types without a destructor need none of this.
template <typename T>
T &ofThisThread()
{
#ifdef __MINGW32__
    static QThreadStorage<T> objects;
    return objects.localData();
#else
    thread_local T object;
    return object;
#endif
}
