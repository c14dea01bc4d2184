"""mpirun -n RANKS python3 with_mpi.py"""

from mpi4py import MPI
from work import ITEMS, report, work

world = MPI.COMM_WORLD
mine = [work(item) for item in range(world.rank, ITEMS, world.size)]
parts = world.gather(mine)
if world.rank == 0:
    report(result for part in parts for result in part)
