with Ada.Unchecked_Conversion;
with Interfaces.C.Strings;
with System;

package body Corvale.Api is

   package C renames Interfaces.C;
   use type System.Address;

   Now : constant C.int := 2;  --  RTLD_NOW as on Linux; RTLD_LOCAL is 0 there

   function dlopen (Name : C.char_array; Mode : C.int) return System.Address
     with Import, Convention => C;
   function dlsym (Library : System.Address; Name : C.char_array) return System.Address
     with Import, Convention => C;
   function dlerror return C.Strings.chars_ptr
     with Import, Convention => C;

   procedure Fail is
   begin
      raise Load_Error with C.Strings.Value (dlerror);
   end Fail;

   function Symbol (Library : System.Address; Name : String) return System.Address is
      Found : constant System.Address := dlsym (Library, C.To_C (Name));
   begin
      if Found = System.Null_Address then
         Fail;
      end if;
      return Found;
   end Symbol;

   generic
      Name : String;
      type Call is private;
   function Find (Library : System.Address) return Call;

   function Find (Library : System.Address) return Call is
      function To_Call is new Ada.Unchecked_Conversion (System.Address, Call);
   begin
      return To_Call (Symbol (Library, Name));
   end Find;

   function Find_CorvaleInit is new Find ("CorvaleInit", CorvaleInit_Call);
   function Find_CorvaleGetInfo is new Find ("CorvaleGetInfo", CorvaleGetInfo_Call);
   function Find_GetInitDllNames is new Find ("GetInitDllNames", GetInitDllNames_Call);
   function Find_OpenLogFile is new Find ("OpenLogFile", OpenLogFile_Call);
   function Find_CloseLogFile is new Find ("CloseLogFile", CloseLogFile_Call);
   function Find_LogMessage is new Find ("LogMessage", LogMessage_Call);
   function Find_GetLastErrMsg is new Find ("GetLastErrMsg", GetLastErrMsg_Call);
   function Find_GetLastInfoMsg is new Find ("GetLastInfoMsg", GetLastInfoMsg_Call);
   function Find_GetDupKeyMode is new Find ("GetDupKeyMode", GetDupKeyMode_Call);
   function Find_SetDupKeyMode is new Find ("SetDupKeyMode", SetDupKeyMode_Call);
   function Find_GetAllKeyMode is new Find ("GetAllKeyMode", GetAllKeyMode_Call);
   function Find_SetAllKeyMode is new Find ("SetAllKeyMode", SetAllKeyMode_Call);
   function Find_ResetAllKeyMode is new Find ("ResetAllKeyMode", ResetAllKeyMode_Call);
   function Find_GetElsetKeyMode is new Find ("GetElsetKeyMode", GetElsetKeyMode_Call);
   function Find_SetElsetKeyMode is new Find ("SetElsetKeyMode", SetElsetKeyMode_Call);
   function Find_CorvaleLoadFile is new Find ("CorvaleLoadFile", CorvaleLoadFile_Call);
   function Find_GetMOICData is new Find ("GetMOICData", GetMOICData_Call);
   function Find_TestInterface is new Find ("TestInterface", TestInterface_Call);
   function Find_TestInterface2 is new Find ("TestInterface2", TestInterface2_Call);
   function Find_TestInterface3 is new Find ("TestInterface3", TestInterface3_Call);

   procedure Load (Library : String) is
      Opened : constant System.Address := dlopen (C.To_C (Library), Now);
   begin
      if Opened = System.Null_Address then
         Fail;
      end if;
      CorvaleInit := Find_CorvaleInit (Opened);
      CorvaleGetInfo := Find_CorvaleGetInfo (Opened);
      GetInitDllNames := Find_GetInitDllNames (Opened);
      OpenLogFile := Find_OpenLogFile (Opened);
      CloseLogFile := Find_CloseLogFile (Opened);
      LogMessage := Find_LogMessage (Opened);
      GetLastErrMsg := Find_GetLastErrMsg (Opened);
      GetLastInfoMsg := Find_GetLastInfoMsg (Opened);
      GetDupKeyMode := Find_GetDupKeyMode (Opened);
      SetDupKeyMode := Find_SetDupKeyMode (Opened);
      GetAllKeyMode := Find_GetAllKeyMode (Opened);
      SetAllKeyMode := Find_SetAllKeyMode (Opened);
      ResetAllKeyMode := Find_ResetAllKeyMode (Opened);
      GetElsetKeyMode := Find_GetElsetKeyMode (Opened);
      SetElsetKeyMode := Find_SetElsetKeyMode (Opened);
      CorvaleLoadFile := Find_CorvaleLoadFile (Opened);
      GetMOICData := Find_GetMOICData (Opened);
      TestInterface := Find_TestInterface (Opened);
      TestInterface2 := Find_TestInterface2 (Opened);
      TestInterface3 := Find_TestInterface3 (Opened);
   end Load;

end Corvale.Api;
