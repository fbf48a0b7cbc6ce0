// The string resources of the library: all texts that its users see.
#include <iterator>

#include "frame/Library.h"
#include "orzcore/platform.h"

namespace orzcore::frame {
namespace {

// From 8 to 59, an even id is the reason of a failure, and the next, odd id is the advice.
constexpr OZString kStrings[] = {
    {1, "Disk full.  Delete unnecessary files, then press retry."},
    {2, "Morvane"},
    {3, "Illegal File Handle."},
    {4, "DOS version 3.3 or higher required."},
    {5, "Illegal Lock Type."},
    {6, "Cannot access file because it is being used."},
    {8, "not enough file handles are available."},
    {9,
     "\n\nIncrease the number on the FILES= line in config.sys, reboot the machine, and try "
     "again."},
    {10, "the root directory is full."},
    {11, "\n\nTry putting the file someplace else to fix the problem."},
    {12, "the specified file does not exist."},
    {13, "\n\nCheck the file name and try again."},
    {14, "the specified path does not exist."},
    {15, "\n\nCheck the path and try again."},
    {16, "the specified drive does not exist."},
    {17, "\n\nCheck the drive letter and try again."},
    {18, "of a hardware problem."},
    {19, "\n\nCheck your hardware and try again."},
    {20, "you do not have rights to the file or directory."},
    {21,
     "\n\nTry storing the file in another drive or directory, or have someone give you rights to "
     "this part of the server."},
    {22, "the disk is full."},
    {23, "\n\nDelete some files from the drive and try again."},
    {24, "we are having problems reading data."},
    {25, "\n\nUse a diagnostic program to check your hard drive."},
    {26, "we are having problems writing data."},
    {27,
     "\n\nMake sure floppy disks aren't write-protected.  Use a diagnostic program to check your "
     "hard drive."},
    {28, "we can't read this version of the file."},
    {29, "\n\nTry importing this file with a different file type selection."},
    {30, "the system is running out of memory."},
    {31, "\n\nClose some windows and try the operation again."},
    {32, "something is in use by another program or user."},
    {33, "\n\nClose other programs that use this file or try again later."},
    {34, "we could not create the specified file."},
    {35, "\n\nTry saving the file to another drive or directory."},
    {36, "we could not open the specified file."},
    {37,
     "\n\nCheck the name and path of the file carefully.  Make sure you have rights to open and "
     "modify the file."},
    {38, "the requested file does not exist."},
    {39, "\n\nCheck the name and path of the file carefully."},
    {40, "a file by that name already exists."},
    {41, "\n\nDelete the existing file if it is not needed and try the operation again."},
    {42, "the data in a file has become corrupted."},
    {43,
     "\n\nRestore the database from backup, or, if you do not have a backup, run the rebuild "
     "utility."},
    {44, "the database is full."},
    {45, "\n\nDelete some entries from the database and try again."},
    {46, "you do not have rights to the database."},
    {47,
     "\n\nAre you using the right database?  Have the database manager give you rights if you "
     "are."},
    {48, "you did not provide the proper password."},
    {49, "\n\nCheck your password and try again."},
    {50, "the database is in use by another user."},
    {51, "\n\nMake sure all of your users have logged out of Orzola and try again."},
    {52, "your version of DOS is too old."},
    {53, "\n\nObtain an upgrade of DOS from your nearest reseller and try again."},
    {54, "your version of Windows is too old."},
    {55,
     "\n\nYou must have Windows 3.1 or higher to use Orzola.  Buy a more recent version of Windows "
     "if necessary and try again."},
    {56, "the numbers generated are too big."},
    {57, "\n\nSelect fewer entries and try the operation again."},
    {58, "of an internal error."},
    {59,
     "\n\nCall technical support for information on this problem.  You must give the the numbers "
     "listed below."},
    {60, " could not be completed because "},
};

constinit OZStringTable gStrings(kStrings, std::size(kStrings));

}  // namespace

void RegisterLibraryStrings(const void* module) { gStrings.Register(module); }

}  // namespace orzcore::frame
