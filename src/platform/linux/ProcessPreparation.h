#pragma once

namespace stavelin::platform {

/// What a process that holds private texts does before anything else. Core dumps are off, since they would
/// carry those texts to the disk. A closed pipe behind standard output becomes an error of the write instead
/// of the process's end.
void prepareProcess();

} // namespace stavelin::platform
