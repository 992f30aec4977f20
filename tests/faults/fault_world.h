#pragma once

// A small world for the batch program: folders with originals, a home with its trash, perhaps a
// second file system; and what must hold in it whatever happened to the program.

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "support/program.h"
#include "support/temp_folder.h"

namespace lumo::test {

/// What a Script does with each original.
struct Scenario {
    std::string name;
    /// Lines of the image loop; "{out}" stands for the target folder.
    std::string commands;
    bool otherFileSystem = false;  // the target folder is on one
    bool olderFiles = false;       // files of the same names stand in the target folder
    bool rewritesHeaders = false;  // an original may have another header, with the same picture
    bool trashes = false;
    bool writesPictures = false;  // "photo-0.png" and so on, into the target folder
};

inline void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

/// Where and how the program meets a fault.
struct Fault {
    long at = 0;           // the call of that number; 0: none
    int error = 0;         // its error number; 0: the program is killed
    bool onwards = false;  // all later calls fail too
};

class World {
  public:
    /// Originals of a few kilobytes, each a picture of its own.
    World(const Scenario& scenario, int files);

    /// Puts everything back to the beginning.
    void Reset();
    /// Runs the Script to its end or to the fault.
    ProgramResult Run(const Fault& fault = {});
    ProgramResult Run(const std::function<void(int process)>& meanwhile);
    /// The number of calls that a run without a fault makes, counted as for faults of that error.
    long CountCalls(int error);

    /// Fails the test unless every original is whole in one of the places where it may be and no
    /// file has a final name that is not whole. Gives whether all is well.
    bool Check(const std::string& what) const;
    /// Fails the test unless all originals have arrived where the Script brings them.
    bool CheckArrived(const std::string& what) const;
    /// Hidden files that the program left beside its targets.
    int Temporaries() const;

    const std::string& Target() const { return target_; }

  private:
    using Files = std::map<std::string, std::string>;  // name, bytes

    std::string TrashFolder() const { return home_ + "/share/Trash/files"; }
    bool IsWhole(const std::string& name, const std::string& bytes) const;
    std::string TroubleIn(const std::string& folder) const;
    bool MayStandInTarget(const std::string& name, const std::string& bytes) const;
    Files Trashed() const;

    Scenario scenario_;
    TempFolder folder_;
    std::optional<TempFolder> other_;
    std::string in_, target_, home_, script_;
    Files originals_, older_;
    Files outputs_;  // of a run without a fault
};

}  // namespace lumo::test
