// Stands in the place of the framework that locks the screen.

extern "C" {

int tapdeckTestLocks = 0;

int SACLockScreenImmediate() {
  ++tapdeckTestLocks;
  return 0;
}
}
