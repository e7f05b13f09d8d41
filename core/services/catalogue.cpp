// The texts. Numbers ascend; each family of diagnostics has its block.

#include "services/catalogue.h"

namespace jex::core {
namespace {

// Said of either end of the interval, wherever a transform needs a zero there.
constexpr const char* needs_zero = "where this type of transform needs 0 within the tolerance %s.";
constexpr const char* goes_on = "The transform is computed as if the value was 0.";

}  // namespace

const Message catalogue[] = {
    // Frame of a diagnostic, and of the log file.
    {0, "jex: a message could not be logged."},
    {396, "jex: trigonometric transforms"},
    {397, "Error:"},
    {398, "Warning:"},
    {407, "a diagnostic without a text; its code is unknown."},
    {408, "The log file %s cannot be opened,"},
    {409, "so messages go to standard output."},

    // Trigonometric transforms: status of an earlier step, size, type.
    {449, "an earlier step failed and left the status ipar[6] = %s."},
    {450, "Initialise and commit the transform again."},
    {451, "ipar[0] = %s is no number of intervals."},
    {452, "At least 2 are needed."},
    {453, "ipar[5] = %s is no type of transform. The types are"},
    {454, "0 sine, 1 cosine,"},
    {455, "2 to 5 the staggered sines and cosines."},
    {456, "Choose one of these in the init routine."},

    // Order of the calls, and the state they share.
    {457, "the transform is not initialised."},
    {458, "Call the init routine first, then commit,"},
    {459, "with the same ipar."},
    {460, "the transform is not committed."},
    {461, "ipar[6] = %s, and only after a commit that leaves 0 there"},
    {462, "a transform is computed."},
    {463, "Mend what commit reported and call it again."},
    {464, "the committed state does not fit the transform."},
    {465, "ipar[0] = %s and the arrays must be those of the commit,"},
    {466, "unchanged since; call commit after every change."},

    // Parameters that commit replaces, data that it doubts.
    {467, "the tolerance %s, the first element of the real parameters,"},
    {468, "is negative."},
    {469, "Boundary values of the data are compared with it,"},
    {470, "so it must be 0 or more."},
    {471, "It was replaced by %s."},
    {472, "f[0] = %s,"},
    {473, needs_zero},
    {474, goes_on},
    {475, "f[n] = %s,"},
    {476, needs_zero},
    {477, goes_on},
    {478, "a boundary value of f is %s,"},
    {479, needs_zero},
    {480, goes_on},
    {481, "ipar[9] = %s is no number of threads."},
    {482, "At least 1 is needed."},
    {483, "It was replaced by %s."},
    {484, "a boundary value of f is %s,"},
    {485, needs_zero},
    {486, goes_on},

    // What the Fourier descriptor interface said.
    {487, "the Fourier transform failed: %s"},

    // Poisson and Helmholtz solvers: order of the calls, sizes, conditions.
    {490, "jex: Poisson and Helmholtz solvers"},
    {530, "an earlier step failed and left the status ipar[0] = %s."},
    {531, "Initialise and commit the solver again."},
    {532, "ipar[10] = %s is no number of intervals along the first axis."},
    {533, "ipar[11] = %s is no number of intervals along the second axis."},
    {534, "ipar[12] = %s is no number of intervals along the third axis."},
    {535, "At least 1 is needed, and 2 along an axis that is transformed."},
    {536, "ipar[3] = %s is no code of boundary conditions."},
    {537, "Their letters are D for Dirichlet and N for Neumann, one for each side."},
    {538, "the domain has no positive length along the axis %s,"},
    {539, "or one of its ends is not where the solver allows it."},

    // The transforms inside, and what the solvers warn of.
    {540, "the trigonometric transform failed with the status %s."},
    {541, "The solver is not committed."},
    {542, "the trigonometric transforms could not be released: status %s."},
    {543, "q = %s is negative."},
    {544, "There may be no solution, or many; it is solved all the same."},
    {545, "ipar[13] to ipar[20] are not those of the commit."},
    {546, "They are used as they are."},
    {547, "only the derivatives at the sides are given and q is 0:"},
    {548, "a constant is free. The right-hand side was made solvable in the least-squares"},
    {549, "sense, and the solution of mean 0 was taken."},
};
const int catalogue_size = sizeof catalogue / sizeof *catalogue;

const FortranTwin fortran_twins[] = {
    {410, 448, 39},  // trigonometric transforms
    {500, 519, 30},  // Poisson and Helmholtz solvers
};
const int fortran_twins_size = sizeof fortran_twins / sizeof *fortran_twins;

}  // namespace jex::core
