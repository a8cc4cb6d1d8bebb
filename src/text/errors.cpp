#include "text/errors.h"

#include <new>

namespace qel
{
namespace
{

struct NumberedText
{
    int32_t Number;
    TextView Description;
};

constexpr NumberedText Descriptions[] = {
    {ErrorNumber::InvalidArgument, u"Llamada a procedimiento o argumento no válidos"},
    {ErrorNumber::Overflow, u"Desbordamiento"},
    {ErrorNumber::OutOfMemory, u"Memoria insuficiente"},
    {ErrorNumber::SubscriptOutOfRange, u"Subíndice fuera del intervalo"},
    {ErrorNumber::TypeMismatch, u"Los tipos no coinciden"},
    {ErrorNumber::BadFileName, u"Nombre de archivo incorrecto"},
    {ErrorNumber::FileNotFound, u"No se encuentra el archivo"},
    {ErrorNumber::FileAlreadyOpen, u"El archivo ya está abierto"},
    {ErrorNumber::DeviceError, u"Error de entrada o salida del dispositivo"},
    {ErrorNumber::FileAlreadyExists, u"El archivo ya existe"},
    {ErrorNumber::DiskFull, u"El disco está lleno"},
    {ErrorNumber::InputPastEnd, u"El archivo termina antes de lo esperado"},
    {ErrorNumber::PermissionDenied, u"Permiso denegado"},
    {ErrorNumber::PathAccess, u"Error de acceso a la ruta o al archivo"},
    {ErrorNumber::PathNotFound, u"No se encuentra la ruta"},
    {ErrorNumber::ObjectNotSet, u"El programa anfitrión no ha facilitado el servicio necesario"},
    {ErrorNumber::InvalidPicture, u"La imagen no es válida"},
};

Error ErrorOf(int32_t myNumber)
{
    return {myNumber, Text(ErrorDescription(myNumber))};
}

} // namespace

TextView ErrorDescription(int32_t myNumber)
{
    for (const NumberedText& myEntry : Descriptions)
    {
        if (myEntry.Number == myNumber)
        {
            return myEntry.Description;
        }
    }
    return u"Error del programa anfitrión o del sistema";
}

Error CurrentError()
{
    try
    {
        throw;
    }
    catch (const Error& e)
    {
        return e;
    }
    catch (const std::bad_alloc&)
    {
        return ErrorOf(ErrorNumber::OutOfMemory);
    }
    catch (...)
    {
        return ErrorOf(ErrorNumber::InvalidArgument);
    }
}

void Raise(int32_t myNumber)
{
    throw ErrorOf(myNumber);
}

} // namespace qel
