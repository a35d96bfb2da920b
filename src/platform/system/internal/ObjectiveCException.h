#pragma once

namespace sweepwright::platform {

/// Finds the Objective-C object behind an exception that C++ caught with `catch (...)`. The run
/// time's own way of catching needs code compiled as Objective-C, which this program has none of.
class ObjectiveCException {
  public:
    using LookUpClass = void* (*)(const char*);
    using Throw = void (*)(void*);

    /// Finds out, by throwing twice, how this process lays exceptions out. `lookUpClass` and
    /// `throwObject` are the run time's; `sample` is any Objective-C object. Not from within a
    /// catch block: exceptions of another language can't be nested and would end the program.
    ObjectiveCException(LookUpClass lookUpClass, Throw throwObject, void* sample);

    /// The object thrown, not retained: it may go when the catch block is left. Null when the
    /// exception is of another kind or lies in a way not known here. Only inside `catch (...)`.
    [[nodiscard]] void* caught() const;

  private:
    // Apple's run time needs the first, GNU's the others.
    [[maybe_unused]] LookUpClass lookUpClass_;
    [[maybe_unused]] bool known_ = false;
    [[maybe_unused]] long distance_ =
        0;  ///< bytes from the C++ run time's record to the unwinder's
};

}  // namespace sweepwright::platform
