// The component library is made of korvel_control as a whole; this file only gives the linker something to start from.
